// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/maintenance/check/code_check.h>

#include <kestan/format/document_record.h>
#include <kestan/format/keys.h>
#include <kestan/format/option_flags.h>
#include <kestan/format/units.h>
#include <kestan/text/escape.h>

#include <algorithm>

namespace kestan {
namespace {

std::string_view KeyBytes(const std::array<char, kNameKeyBytes>& key) {
  return {key.data(), key.size()};
}

void CheckLength(const IndexTables::OddRecord& record, Findings* findings) {
  const std::string_view key = record.key;
  const std::uint64_t bytes = record.bytes;
  if (key == kAvailableKey || key == kDeletedKey) {
    findings->Fault(key, "odd length: ", bytes, " bytes");
  } else if (IsOfFamily(key, kNameFamily)) {
    findings->Fault(key, "the key has ", std::uint64_t{key.size()}, " bytes instead of ",
                    std::uint64_t{kNameKeyBytes});
  } else {
    const std::uint64_t expected = key == kCounterKey   ? kUnitBytes
                                   : key == kOptionsKey ? kOptionsBytes
                                                        : kDocumentRecordBytes;
    findings->Fault(key, "length ", bytes, " instead of ", expected, " bytes");
  }
}

// A document record and the name record of its code name each other.
void CheckDocument(const IndexTables& tables, const IndexTables::Document& document,
                   Findings* findings) {
  const String key = ItemKey(kDocumentFamily, document.name);
  const std::uint64_t code = document.code;
  if (document.has_padding) findings->Fault(key, "other bytes than 0 behind the code");
  if (document.name.find('\0') != String::npos) {
    findings->Note(key, "a NUL in the name: no call of the engine reaches the document");
  }
  if (code == 0) return findings->Fault(key, "the code is 0");
  const IndexTables::Name* const name = tables.FindName(document.code);
  if (name == nullptr) {
    findings->Fault(key, "code ", code, " has no name record");
  } else if (name->name != document.name) {
    findings->Fault(key, "code ", code, " names another document: ", Escaped(name->name));
  }
}

// Reports a name whose document record is missing or gives another code. Where the code names
// another document, the line of that document says so.
void CheckName(const IndexTables& tables, const IndexTables::Name& name, Findings* findings) {
  const auto key_bytes = NameKey(name.code);
  const std::string_view key = KeyBytes(key_bytes);
  if (name.code == 0) findings->Fault(key, "the code is 0");
  const IndexTables::Document* const document = tables.FindDocument(name.name);
  if (document == nullptr) {
    findings->Fault(key, "no document record: ", Escaped(name.name));
  } else if (document->code != name.code) {
    findings->Fault(key, "the document has another code, ", std::uint64_t{document->code}, ": ",
                    Escaped(name.name));
  }
}

Code HighestOf(const CodeSet& codes) {
  for (std::size_t code = codes.size() - 1; code > 0; --code) {
    if (codes[code]) return static_cast<Code>(code);
  }
  return 0;
}

CodeSet SetOf(const Vector<Code>& codes) {
  CodeSet set;
  for (const Code code : codes) set.set(code);
  return set;
}

void CheckCounter(const IndexTables& tables, const CodeSet& in_use, Findings* findings) {
  const std::uint64_t highest = HighestOf(in_use);
  if (highest <= tables.counter) return;
  if (tables.has_counter) {
    findings->Fault(kCounterKey, "the counter ", std::uint64_t{tables.counter}, " is below code ",
                    highest, ", which is in use");
  } else {
    findings->Fault(kCounterKey, "missing, though codes up to ", highest, " are in use");
  }
}

// A code in "g-avail" or "g-deleted" must be neither 0, nor in use, nor above the counter.
void CheckListed(const IndexTables& tables, std::string_view key, const CodeSet& listed,
                 const CodeSet& in_use, Findings* findings) {
  if (listed[0]) findings->Fault(key, "the code is 0");
  for (std::size_t i = 1; i < listed.size(); ++i) {
    if (!listed[i]) continue;
    const std::uint64_t code = i;
    if (in_use[i]) findings->Fault(key, "code ", code, " is in use");
    if (i > tables.counter) {
      findings->Fault(key, "code ", code, " is above the counter ", std::uint64_t{tables.counter});
    }
  }
}

void CheckRepeats(std::string_view key, Vector<Code> codes, Findings* findings) {
  std::sort(codes.begin(), codes.end());
  for (auto run = codes.begin(); run != codes.end();) {
    const auto end = std::upper_bound(run, codes.end(), *run);
    const auto times = static_cast<std::uint64_t>(end - run);
    if (times > 1) {
      findings->Fault(key, "code ", std::uint64_t{*run}, " is listed ", times, " times");
    }
    run = end;
  }
}

// Reports how many codes were handed out and can never be used again.
void CheckLostCodes(const IndexTables& tables, const CodeSet& known, Findings* findings) {
  std::uint64_t lost = 0;
  for (std::size_t code = 1; code <= tables.counter; ++code) lost += known[code] ? 0 : 1;
  if (lost == 0) return;
  findings->Fault(kCounterKey, "codes neither in use nor removed nor reusable: ", lost);
}

}  // namespace

CodeSet CodesInUse(const IndexTables& tables) {
  CodeSet codes;
  for (const IndexTables::Document& document : tables.documents) codes.set(document.code);
  for (const IndexTables::Name& name : tables.names) codes.set(name.code);
  codes.reset(0);
  return codes;
}

void CheckLengths(const IndexTables& tables, Findings* findings) {
  for (const String& key : tables.unreadable) findings->Fault(key, "cannot be read");
  for (const IndexTables::OddRecord& record : tables.odd) CheckLength(record, findings);
}

void CheckCodes(const IndexTables& tables, Findings* findings) {
  const CodeSet in_use = CodesInUse(tables);
  const CodeSet reusable = SetOf(tables.reusable);
  const CodeSet removed = SetOf(tables.removed);
  if (!tables.has_options) findings->Note(kOptionsKey, "missing: no option is set");
  CheckCounter(tables, in_use, findings);
  CheckListed(tables, kAvailableKey, reusable, in_use, findings);
  CheckRepeats(kAvailableKey, tables.reusable, findings);
  CheckListed(tables, kDeletedKey, removed, in_use, findings);
  CheckRepeats(kDeletedKey, tables.removed, findings);
  for (std::size_t code = 1; code < removed.size(); ++code) {
    if (removed[code] && reusable[code]) {
      findings->Fault(kDeletedKey, "code ", std::uint64_t{code}, " is reusable already");
    }
  }
  CheckLostCodes(tables, in_use | reusable | removed, findings);
  for (const auto& document : tables.documents) CheckDocument(tables, document, findings);
  for (const auto& name : tables.names) CheckName(tables, name, findings);
}

}  // namespace kestan
