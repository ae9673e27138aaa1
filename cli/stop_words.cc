#include "stop_words.h"

#include <optional>
#include <string_view>

#include "decode.h"
#include "document.h"
#include "message.h"
#include "skip.h"
#include "steady_file.h"
#include "transliterate.h"

namespace kestan_cli {
namespace {

constexpr std::string_view kEnglish =
    "about after all also and another any are aren't because been before being between both but "
    "can cannot can't could couldn't did didn't does doesn't doing done don't down during each "
    "either else even ever every for from had hadn't has hasn't have haven't having her here hers "
    "herself him himself his how however i'd i'll i'm into isn't it's its itself i've just like "
    "may me might more most much must my myself neither nor not now off once only other our ours "
    "out over own same shall she should shouldn't since some such than that that's the their "
    "theirs them themselves then there these they this those through thus too under until upon "
    "very was wasn't were weren't what when where whether which while who whom whose why will "
    "with within without won't would wouldn't yet you your yours yourself";

std::string ReadWords(const std::string& path) {
  std::string bytes;
  try {
    SteadyFile file(path);
    for (std::string_view piece; file.Read(&piece);) bytes += piece;
  } catch (const SkipFile& problem) {
    throw CommandError("cannot read " + Quoted(path) + ": " + problem.what());
  }
  const std::optional<std::string> text = DecodedText(std::move(bytes));
  if (!text.has_value()) throw CommandError("cannot read " + Quoted(path) + ": not a text");
  return Transliterated(*text);
}

}  // namespace

std::string StopWords(const std::string& choice) {
  if (choice.empty()) return "";
  std::string words = choice == "english" ? std::string(kEnglish) : ReadWords(choice);
  if (words.size() > kMaxTextBytes) throw CommandError(Quoted(choice) + " is too large");
  words = CleanWords(std::move(words));
  // Even a blank would make the engine drop short words.
  return words.find_first_not_of(" \n") == std::string::npos ? "" : words;
}

}  // namespace kestan_cli
