// SPDX-License-Identifier: GPL-3.0-or-later
// The words of a text, as the engine splits it: kestan::Tokenizer.
#ifndef KESTAN_TOKENIZER_H_
#define KESTAN_TOKENIZER_H_

#include <kestan/indexing/tokenizer.h>

#endif  // KESTAN_TOKENIZER_H_
