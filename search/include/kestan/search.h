// SPDX-License-Identifier: GPL-3.0-or-later
// Kestan's search library: an index of any size, searched with ranked answers.
//
//   kestan::search::IndexWriter  adds, replaces, removes and renames documents
//   kestan::search::IndexReader  answers queries
//   kestan::search::SearchQuery  is a query that a program builds without a text
//   kestan::search::Analyzer     finds the words of texts, for hosts that look at them
//
// Errors are values (kestan::search::Status); no function throws.
#ifndef KESTAN_SEARCH_H_
#define KESTAN_SEARCH_H_

#include <kestan/search/analyzer.h>
#include <kestan/search/check.h>
#include <kestan/search/convert.h>
#include <kestan/search/copy.h>
#include <kestan/search/document.h>
#include <kestan/search/document_cursor.h>
#include <kestan/search/dump.h>
#include <kestan/search/filtered_document.h>
#include <kestan/search/index_reader.h>
#include <kestan/search/index_writer.h>
#include <kestan/search/repair.h>
#include <kestan/search/search_query.h>
#include <kestan/search/status.h>
#include <kestan/search/text.h>
#include <kestan/search/upkeep_progress.h>

#endif  // KESTAN_SEARCH_H_
