// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/document_facts.h"

#include "cli/files/fingerprint.h"

namespace kestan_cli {

DocumentFacts FactsOf(const std::string& name, const std::string& host_data) {
  DocumentFacts facts;
  if (const auto file = FileStateIn(host_data)) facts.date = file->mtime_seconds;
  const auto fingerprint = FingerprintIn(host_data);
  if (!fingerprint) return facts;
  const MailFacts& mail = fingerprint->mail;
  if (mail.date) facts.date = mail.date;
  facts.from = mail.from;
  facts.is_mail = mail.date.has_value() || !mail.from.empty() || !mail.to.empty();
  facts.container = ContainerOf(name, *fingerprint);
  return facts;
}

}  // namespace kestan_cli
