// What the records of a damaged index say together, and what a new one is to hold.
#ifndef KESTAN_MAINTENANCE_REPAIR_REPAIR_PLAN_H_
#define KESTAN_MAINTENANCE_REPAIR_REPAIR_PLAN_H_

#include <kestan/format/id_list.h>
#include <kestan/format/posting.h>
#include <kestan/format/record_kind.h>
#include <kestan/maintenance/repair.h>
#include <kestan/maintenance/repair/document_repair.h>
#include <kestan/maintenance/repair/posting_repair.h>
#include <kestan/maintenance/report/repair_report.h>
#include <kestan/maintenance/salvage/salvage.h>
#include <kestan/storage/dbdatum.h>
#include <kestan/storage/memory.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestan {

// What is to become of a record.
enum class RepairStep : std::uint8_t {
  kCopy,      // as it is
  kPostings,  // entry by entry: see RepairPlan::KeptPostings()
  kWordList,  // as far as its words make sense: see ReadWordList()
  kRewrite,   // written anew from what all records say: documents, names, codes, options
  kDrop,      // it cannot be what its key says
};

// Reads all salvaged records and decides.
class RepairPlan {
 public:
  // Borrows both. Reports what it restores and drops, but not yet the documents.
  RepairPlan(const Salvage& salvage, RepairReport* report);

  // `record` is one of the salvaged ones.
  RepairStep StepOf(const SalvagedRecord& record) const {
    return steps_[static_cast<std::size_t>(&record - salvage_.records().data())];
  }

  // Returns the entries of a posting record that are kept; `*all` tells whether nothing is left
  // out. Valid until the next call. To be called once for each record, for where two words stand at
  // one place, the second is left out.
  const Vector<WholePosting>& KeptPostings(const SalvagedRecord& record, bool* all);

  const RepairedDocuments& documents() const { return documents_; }
  const Vector<Code>& reusable() const { return reusable_; }
  const Vector<Code>& removed() const { return removed_; }
  bool has_reusable() const { return !reusable_.empty() || found_reusable_.has_value(); }
  bool has_removed() const { return !removed_.empty() || found_removed_.has_value(); }
  bool has_counter() const { return counter_ != 0 || found_counter_.has_value(); }
  Code counter() const { return counter_; }
  std::uint32_t options() const { return options_; }

  // Reports every document and counts them in `*result`.
  void ReportDocuments(RepairResult* result) const;

 private:
  using Record = std::optional<DBDatum>;

  // What the words of a document say of it.
  struct Tally {
    std::uint32_t positions = 0;  // of words in small letters
    std::uint32_t doubtful = 0;   // of such words whose records may list an earlier document too
    Position highest = 0;
    bool has_words = false;
    bool has_own_words = false;  // that are not doubtful
  };

  // How the posting records look.
  struct Look {
    std::size_t records = 0;
    std::size_t placed = 0;       // how many make sense with positions
    std::size_t codes_alone = 0;  // and without
  };

  void FindSingleRecords();
  void KeepFirstBytes(std::string_view key, std::uint32_t bytes, Record* record);
  void ChooseOptions();
  Look LookAtPostings();
  bool AreDistinctCodes(const DBDatum& value);
  void FindHighestCode();
  Code HighestCodeSeen();
  void DecideSteps();
  RepairStep DecideStep(const SalvagedRecord& record, const PostingRules& rules) const;
  void DecideDocuments(const Vector<std::size_t>& undecided);
  void FindWrapping();
  void CollectClaims();
  void AddDocumentClaim(const SalvagedRecord& record);
  void DropWordsInTheWay();
  void FindDamagedWords();
  bool IsKeyOfDocument(std::string_view key) const;
  void TakeCodes(const Record& list, CodeSet* codes) const;
  void TallyPostings();
  void TallyRecord(std::string_view key, const DBDatum& value, const Vector<WholePosting>& entries,
                   bool is_doubtful);
  void TallyMixed(const DBDatum& value);
  void FindContradictions();
  void CollectPlaces(const CodeSet& codes);
  void ListCodes();
  bool IsKept(Code code, bool is_never_purged);
  bool TakesPlaces(const DBDatum& value, const WholePosting& entry, bool is_doubted);
  bool IsYoungerThanFlush(Code code) const;
  bool IsUnfinished(const RepairedDocument& document) const;

  DBDatum ValueOf(const SalvagedRecord& record) const;
  DBDatum KeyOf(const SalvagedRecord& record) const;

  const Salvage& salvage_;
  RepairReport& report_;
  Record found_counter_;
  Record found_reusable_;
  Record found_removed_;
  Record found_options_;
  Vector<RepairStep> steps_;  // of each record
  PostingRules rules_;
  std::uint32_t options_ = 0;
  CodeSet wrapping_;
  Vector<DocumentClaim> document_claims_;
  Vector<NameClaim> name_claims_;
  CodeSet retired_;  // listed as reusable or removed
  RepairedDocuments documents_;
  CodeSet in_use_;
  CodeSet posted_;                 // by words that a shrink purges
  CodeSet contradictory_;          // documents with more words than places
  Vector<std::uint32_t> places_;   // of these: code << 16 | position, sorted, once for each word
  Vector<char> taken_;             // which of places_ a word has that is kept
  std::size_t end_code_ = 0;       // no document and no kept entry has this code or a higher one
  Vector<Tally> tallies_;          // by code
  Vector<std::uint32_t> seen_in_;  // by code: the number of the last record with an entry of it
  std::uint32_t record_number_ = 0;
  PostingRepair postings_{rules_, wrapping_};
  Vector<Code> reusable_;
  Vector<Code> removed_;
  CodeSet orphans_;
  Code counter_ = 0;
  bool is_damaged_ = false;  // records were, or the file
};

}  // namespace kestan

#endif  // KESTAN_MAINTENANCE_REPAIR_REPAIR_PLAN_H_
