// SPDX-License-Identifier: GPL-3.0-or-later
// BM25: how much a term that occurs in a document says about the relevance of the document.
#ifndef KESTAN_SEARCH_RANKING_BM25_H_
#define KESTAN_SEARCH_RANKING_BM25_H_

#include <cstddef>

namespace kestan::search {

struct Bm25Parameters {
  double k1 = 1.8;  // how slowly further occurrences of a term count less
  double b = 0.75;  // how much the length of a document counts
};

// Returns the inverse document frequency of a term that `document_frequency` of `documents`
// documents have: ln(1 + (N - n + 0.5) / (n + 0.5)).
double Idf(double document_frequency, double documents);

// Returns the power to which idfs are raised in a query of so many clauses. Of a question as long
// as a paragraph most words say little of its subject, so the rare ones count more: 1 up to 20
// clauses, a quarter more each time that they are twice as many, 1.5 from 80.
double IdfExponent(std::size_t clauses);

// Returns the score of a term with `idf` that occurs `tf` times in a document: idf * tf * (k1 + 1)
// / (tf + k1 * (1 - b + b * relative_length)). `relative_length` is the length of the document by
// the mean length of documents.
double Bm25Score(double idf, double tf, double relative_length,
                 const Bm25Parameters& parameters = {});

}  // namespace kestan::search

#endif  // KESTAN_SEARCH_RANKING_BM25_H_
