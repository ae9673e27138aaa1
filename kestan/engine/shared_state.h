// SPDX-License-Identifier: GPL-3.0-or-later
// What belongs to the process, whatever engine objects it has.
#ifndef KESTAN_ENGINE_SHARED_STATE_H_
#define KESTAN_ENGINE_SHARED_STATE_H_

#include <kestan/query/registry.h>
#include <kestan/text/scratch_text.h>

namespace kestan {

// The buffer that Kestan::WordBuf and Kestan::WBSize show to hosts.
extern ScratchBuffer scratch;

// Returns the result sets of all queries. Sets that nobody has freed when the process ends stay as
// they are: only Kestan::FreeQueryResult releases one.
ResultRegistry& Results();

}  // namespace kestan

#endif  // KESTAN_ENGINE_SHARED_STATE_H_
