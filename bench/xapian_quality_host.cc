// SPDX-License-Identifier: GPL-3.0-or-later
// Answers the questions of a test collection through Xapian, for retrieval_quality.py.
//
//   xapian_quality_host COLLECTION INDEX
//
// The same files and the same output as those of quality_host. Texts go through Xapian's term
// generator and questions, as they stand, through its query parser, both with its English stemmer;
// English stop words are left out of questions, other words are joined with OR; ranked by its
// default, BM25.
#include <kestan/search/text.h>
#include <xapian.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>

#include "bench/support/collection.h"

namespace {

using namespace kestan_bench;
using Clock = std::chrono::steady_clock;

constexpr Xapian::doccount kKept = 1000;  // answers to a question

void Index(const std::string& collection, const std::string& index) {
  Xapian::WritableDatabase database(index, Xapian::DB_CREATE | Xapian::DB_NO_SYNC);
  Xapian::TermGenerator generator;
  generator.set_stemmer(Xapian::Stem("english"));
  for (const Fields& fields : ReadCollection(collection + "/docs.tsv")) {
    Xapian::Document document;
    document.set_data(fields[0]);
    generator.set_document(document);
    generator.index_text(fields[1]);
    database.add_document(document);
  }
  database.commit();
}

void Answer(const Xapian::Database& database, Xapian::QueryParser* parser, const Fields& question) {
  const Clock::time_point start = Clock::now();
  Xapian::Enquire enquire(database);
  enquire.set_query(parser->parse_query(question[1]));
  const Xapian::MSet matches = enquire.get_mset(0, kKept);
  std::string names;
  for (auto match = matches.begin(); match != matches.end(); ++match) {
    names += "\t" + match.get_document().get_data();
  }
  const std::chrono::duration<double, std::micro> took = Clock::now() - start;
  std::cout << question[0] << "\t" << static_cast<long>(took.count()) << names << "\n";
}

void Run(const std::string& collection, const std::string& index) {
  Index(collection, index);
  const Xapian::Database database(index);
  Xapian::SimpleStopper stopper;
  std::istringstream stop_words(kestan::search::EnglishStopWords());
  for (std::string word; stop_words >> word;) stopper.add(word);
  Xapian::QueryParser parser;
  parser.set_stemmer(Xapian::Stem("english"));
  parser.set_stemming_strategy(Xapian::QueryParser::STEM_SOME);
  parser.set_stopper(&stopper);
  parser.set_database(database);
  for (const Fields& question : ReadCollection(collection + "/queries.tsv")) {
    Answer(database, &parser, question);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) EndWith("usage", "xapian_quality_host COLLECTION INDEX");
  try {
    Run(argv[1], argv[2]);
  } catch (const Xapian::Error& error) {
    EndWith("xapian_quality_host", error.get_msg());
  }
}
