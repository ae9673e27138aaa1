// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/extract/roff/roff.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "cli/extract/charset/ascii.h"
#include "cli/extract/converter/converter.h"
#include "cli/extract/roff/roff_escapes.h"

namespace kestan_cli {
namespace {

constexpr std::string_view kBlanks = " \t";

// A hostile document may define any number of strings.
constexpr std::size_t kMaxStrings = 1000;
constexpr std::size_t kMaxStringBytes = 1000;

// Returns whether `name` is one of `names`, which stand between blanks.
bool IsAmong(std::string_view names, std::string_view name) {
  for (std::size_t at = names.find(name); at != std::string_view::npos && !name.empty();
       at = names.find(name, at + 1)) {
    const bool starts = at == 0 || names[at - 1] == ' ';
    const std::size_t end = at + name.size();
    if (starts && (end == names.size() || names[end] == ' ')) return true;
  }
  return false;
}

// Requests and macros that only say how the text looks.
constexpr std::string_view kLayout =
    "ad af als bp br ce cc cs c2 eo ec ev fam fc fi fl fp ft hc hw hy hla hpf hcode in it lf lg ll "
    "ls lt mk mso na ne nf nh nop nr ns nx os pc pl pm pn po ps rj rm rn rr rs rt shc sp ss sv ta "
    "tc ti tm tr ul vs warn wh do PP P LP TP HP TQ AT UC DT PD RS RE EX EE SY YS EQ EN IX Vb Ve Sp "
    "Dd Os Pp Bl El Bd Ed Bk Ek Rs Re";

// Macros of manual pages that set their arguments in two fonts, without blanks between them.
constexpr std::string_view kAlternating = "BR RB IR RI BI IB";

// Macros of mdoc that may stand among the arguments of others.
constexpr std::string_view kMdoc =
    "Ad An Ao Ac Ap Aq Ar Bc Bo Bq Brc Bro Brq Bx Cd Cm Dc Do Dq Dv Ec Em En Eo Er Ev Fa Fc Fl Fn "
    "Fo Fr Ft Fx Ic In Li Lk Ms Mt Nm No Ns Nx Oc Oo Op Ot Ox Pa Pc Pf Po Pq Ql Qc Qo Qq Sc So Sq "
    "St Sx Sy Tn Ux Va Vt Xr";

// Splits the arguments of a macro: at blanks, but not within double quotes or after a backslash.
std::vector<std::string_view> ArgumentsOf(std::string_view line) {
  std::vector<std::string_view> arguments;
  while (true) {
    line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    if (line.empty()) return arguments;
    const bool is_quoted = line.front() == '"';
    if (is_quoted) line.remove_prefix(1);
    std::size_t end = 0;
    while (end < line.size() &&
           (is_quoted ? line[end] != '"' : kBlanks.find(line[end]) == std::string_view::npos)) {
      end += line[end] == '\\' && end + 1 < line.size() ? 2 : 1;
    }
    arguments.push_back(line.substr(0, end));
    line.remove_prefix(std::min(end + (is_quoted ? 1 : 0), line.size()));
  }
}

class RoffReader {
 public:
  void ReadLine(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (!end_of_definition_.empty()) {
      if (line.substr(0, end_of_definition_.size()) == end_of_definition_) end_of_definition_ = {};
      return;
    }
    if (skipped_blocks_ > 0) return CountBlocks(line);
    if (IsTableFormat(line)) return;
    const bool is_request = !line.empty() && (line.front() == '.' || line.front() == '\'');
    is_request ? ReadRequest(line.substr(1)) : AddText(line);
  }

  std::string Finish() {
    const std::string name = Title();
    return name.empty() ? std::move(text_) : name + "\n" + text_;
  }

 private:
  std::string Plain(std::string_view text) const { return WithoutEscapes(text, strings_); }

  std::string Title() const {
    if (!description_.empty()) return page_ + " - " + description_;
    if (page_.empty()) return is_called_name_ ? name_ : "";
    if (name_.empty()) return page_;
    for (const std::string_view dash : {" - ", " \u2013 ", " \u2014 "}) {
      const std::size_t at = name_.find(dash);
      if (at != std::string::npos) return page_ + " - " + name_.substr(at + dash.size());
    }
    return is_called_name_ ? page_ + " - " + name_ : page_;
  }

  void AddText(std::string_view line) {
    if (in_table_ && line.find_first_not_of("_=T{} \t|") == std::string_view::npos) return;
    const std::string text = Plain(line);
    if (in_name_ && !Trimmed(text).empty()) {
      if (!name_.empty()) name_ += ' ';
      if (name_.size() < kMaxStringBytes) name_ += Trimmed(text);
    }
    text_ += text;
    text_ += '\n';
  }

  // Skips what says how the columns of a table look: all up to a line that ends with a full stop.
  bool IsTableFormat(std::string_view line) {
    if (!in_table_format_) return false;
    line = Trimmed(line, kBlanks);
    if (!line.empty() && (line.back() == '.' || line.front() == '.')) in_table_format_ = false;
    return true;
  }

  // ---- Conditions ----

  void CountBlocks(std::string_view line) {
    for (std::size_t at = line.find('\\'); at + 1 < line.size() && at != std::string_view::npos;
         at = line.find('\\', at + 2)) {
      if (line[at + 1] == '{') ++skipped_blocks_;
      if (line[at + 1] == '}' && skipped_blocks_ > 0) --skipped_blocks_;
      if (skipped_blocks_ == 0) return;
    }
  }

  // Reads what follows a condition: `is_true` says whether it counts.
  void ReadBranch(std::string_view branch, bool is_true) {
    branch = Trimmed(branch, kBlanks);
    if (!is_true) return CountBlocks(branch);
    while (branch.substr(0, 2) == "\\{") branch = Trimmed(branch.substr(2), kBlanks);
    if (branch == "\\" || branch.empty()) return;
    constexpr int kMaxDepth = 20;
    if (++depth_ < kMaxDepth) ReadLine(branch);
    --depth_;
  }

  // We print as nroff does. Other conditions are about macros and registers, which are not kept.
  void ReadCondition(std::string_view rest, bool has_else) {
    rest = Trimmed(rest, kBlanks);
    const bool is_negated = !rest.empty() && rest.front() == '!';
    if (is_negated) rest.remove_prefix(1);
    const std::size_t block = std::min(rest.find("\\{"), rest.size());
    const std::string_view condition = rest.substr(0, std::min(rest.find_first_of(kBlanks), block));
    const bool is_true = (condition == "n") != is_negated;
    if (has_else) else_is_true_ = !is_true;
    ReadBranch(rest.substr(condition.size()), is_true);
  }

  // ---- Requests ----

  void ReadRequest(std::string_view line) {
    line = Trimmed(line, kBlanks);
    const std::string_view name = line.substr(0, line.find_first_of(" \t\\"));
    const std::string_view rest = line.substr(name.size());
    if (name == "if") return ReadCondition(rest, false);
    if (name == "ie") return ReadCondition(rest, true);
    if (name == "el") return ReadBranch(rest, else_is_true_);
    if (name == "de" || name == "de1" || name == "am" || name == "ig") return Define(name, rest);
    if (name == "ds") return DefineString(rest);
    if (IsAmong("PP P LP SS", name)) in_name_ = false;
    if (name == "TS") in_table_ = in_table_format_ = true;
    if (name == "TE") in_table_ = false;
    if (name == "TS" || IsAmong(kLayout, name)) return;
    if (name.empty() || name == "." || name.front() == '\\') return;
    ReadMacro(name, ArgumentsOf(rest));
  }

  void Define(std::string_view request, std::string_view rest) {
    const std::vector<std::string_view> arguments = ArgumentsOf(rest);
    const std::size_t end = request == "ig" ? 0 : 1;
    end_of_definition_ = ".";
    end_of_definition_ += arguments.size() > end ? arguments[end] : ".";
  }

  void DefineString(std::string_view rest) {
    rest = Trimmed(rest, kBlanks);
    const std::string_view name = rest.substr(0, rest.find_first_of(kBlanks));
    std::string_view value = Trimmed(rest.substr(name.size()), kBlanks);
    if (!value.empty() && value.front() == '"') value.remove_prefix(1);
    if (value.size() > kMaxStringBytes || strings_.size() >= kMaxStrings) return;
    strings_[std::string(name)] = Plain(value).substr(0, kMaxStringBytes);
  }

  using Arguments = std::vector<std::string_view>;

  void ReadMacro(std::string_view name, const Arguments& arguments) {
    if (name == "TH" || name == "Dt") return ReadHeading(arguments);
    if (name == "SH" || name == "Sh") {
      if (!arguments.empty()) BeginSection(LowerCase(Plain(arguments[0])));
      return AddWords(arguments, " ", true);
    }
    if (name == "Nd") description_ = Joined(arguments, " ").substr(0, kMaxStringBytes);
    if (name == "IP")
      return AddWords({arguments.begin(), arguments.begin() + (arguments.empty() ? 0 : 1)});
    if (IsAmong(kAlternating, name)) return AddWords(arguments, "");
    if (name == "Nm" && arguments.empty()) return AddText(mdoc_name_);
    if (name == "Nm" && mdoc_name_.empty()) mdoc_name_ = Plain(arguments[0]);
    if (name.size() >= 2 && (IsAmong(kMdoc, name) || name == "It")) {
      Arguments all{name};
      all.insert(all.end(), arguments.begin(), arguments.end());
      return AddMdoc(all);
    }
    AddWords(arguments);
  }

  // The name stands in the section NAME, which in other languages is the first one.
  void BeginSection(const std::string& heading) {
    const bool is_name = heading == "name";
    in_name_ = is_name ? !is_called_name_ : !has_section_;
    has_section_ = true;
    if (!in_name_) return;
    name_.clear();
    is_called_name_ = is_name;
  }

  void ReadHeading(const Arguments& arguments) {
    if (arguments.empty() || !page_.empty()) return;
    page_ = LowerCase(Plain(arguments[0]));
    if (arguments.size() > 1) page_ += "(" + Plain(arguments[1]) + ")";
    if (page_.size() > kMaxStringBytes) page_.clear();
  }

  std::string Joined(const Arguments& arguments, std::string_view separator) const {
    std::string line;
    for (const std::string_view argument : arguments) {
      if (!line.empty()) line += separator;
      line += Plain(argument);
    }
    return line;
  }

  void AddWords(const Arguments& arguments, std::string_view separator = " ",
                bool is_heading = false) {
    if (arguments.empty()) return;
    const bool was_in_name = in_name_;
    if (is_heading) in_name_ = false;
    AddText(Joined(arguments, separator));
    in_name_ = was_in_name;
  }

  // The names of macros among the arguments are no text, but a flag has its dash.
  void AddMdoc(const Arguments& arguments) {
    std::string line;
    bool is_flag = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
      const std::string_view argument = arguments[i];
      if (i == 0 && argument == "It") continue;
      if (IsAmong(kMdoc, argument)) {
        is_flag = argument == "Fl";
        continue;
      }
      if (!line.empty()) line += ' ';
      if (is_flag) line += '-';
      is_flag = false;
      line += Plain(argument);
    }
    if (!line.empty()) AddText(line);
  }

  std::string text_;
  RoffStrings strings_{{"Aq", "'"}, {"R", "\u00ae"}, {"Tm", "\u2122"}, {"lq", "\""}, {"rq", "\""}};
  std::string end_of_definition_;  // the line that ends what is skipped; empty: nothing is
  int skipped_blocks_ = 0;         // how many levels of \{ are left out
  int depth_ = 0;                  // of conditions on one line
  bool else_is_true_ = true;
  bool in_table_ = false;
  bool in_table_format_ = false;
  bool has_section_ = false;
  bool in_name_ = false;         // in the section that has the name
  bool is_called_name_ = false;  // that section is NAME
  std::string page_;             // "ls(1)"
  std::string name_;             // "ls - list directory contents"
  std::string mdoc_name_;        // "ls"
  std::string description_;      // "list directory contents"
};

}  // namespace

bool IsExtensionOfRoff(std::string_view extension) {
  if (extension.empty() || extension.size() > 8) return false;
  const bool is_section = extension[0] >= '1' && extension[0] <= '9' &&
                          (extension.size() == 1 || extension[1] < '0' || extension[1] > '9');
  return is_section || IsAmong("man mdoc roff me ms mm n l tr", extension);
}

bool IsRoff(std::string_view name, std::string_view head) {
  if (!IsExtensionOfRoff(ExtensionOf(name))) return false;
  if (head.substr(0, 3) == "\xef\xbb\xbf") head.remove_prefix(3);
  head = head.substr(std::min(head.find_first_not_of(kWhiteSpace), head.size()));
  if (head.size() < 3 || (head[0] != '.' && head[0] != '\'')) return false;
  return IsAsciiLetter(head[1]) || head[1] == '\\' || head[1] == ' ' || head[1] == '"';
}

std::string TextOfRoff(std::string_view roff) {
  RoffReader reader;
  while (!roff.empty()) {
    const std::string_view line = roff.substr(0, roff.find('\n'));
    roff.remove_prefix(std::min(line.size() + 1, roff.size()));
    reader.ReadLine(line);
  }
  return reader.Finish();
}

}  // namespace kestan_cli
