// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/language_guess.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "search/process/first_use.h"
#include "search/text/letters.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

constexpr std::size_t kMostBytesOfText = std::size_t{4} << 10;
constexpr std::size_t kMostBytes = std::size_t{256} << 10;

// Of fewer words, and where fewer than one in kLeastShare is a frequent one, nothing is guessed.
constexpr std::uint64_t kLeastFound = 5;
constexpr std::uint64_t kLeastShare = 20;

struct FrequentWords {
  std::string_view language;
  std::string_view words;  // each between blanks, as people write them, with small letters
};

// Languages, each a bit in the order of kFrequentWords.
using LanguageSet = std::uint32_t;

// The same number of words would not do: what counts is how much of a text they are. Languages that
// are alike differ in some.
constexpr std::array<FrequentWords, 28> kFrequentWords = {{
    {"arabic",
     " في من على أن إلى عن التي هذا الذي مع كان ما لا هذه كل بعد أو ذلك بين لم "
     "قد هو هي "},
    {"armenian",
     " և է որ են մեջ համար այս մի հետ նա իր ու չի էր եւ նրա կամ բայց դեպի մասին "
     "այդ "},
    {"basque",
     " eta da ez du bat dira ere izan zen baina egin hau zuen dute duen baino "
     "beste behar den dut hori gure zer "},
    {"catalan",
     " el de la i que els a les del en per un una amb és no al dels com més es "
     "va aquest seva són però també "},
    {"danish",
     " og i at det er en til af på som med for ikke den der et han de har var "
     "jeg fra kan skal om sig eller blev efter "},
    {"dutch",
     " de het een van en in is dat op te zijn voor met die niet aan er ook als "
     "om bij door maar uit nog worden wordt naar "},
    {"english",
     " the of and to in is that it for was with as be on by this are not from "
     "have which or but "},
    {"finnish",
     " ja on ei se että oli hän ovat joka mutta myös kun niin kuin tai hänen "
     "sen ole mukaan vain sekä jos nyt sitä "},
    {"french",
     " le la les de des et du un une est que dans en qui pour pas sur au par "
     "plus ne ce avec il elle sont nous vous "},
    {"german",
     " der die und das den von zu mit des auf ist im dem ein eine nicht als "
     "auch es an werden aus er sich wird ich sie "},
    {"greek",
     " και το να του η της με που την από για είναι τα δεν στο τον οι ο θα στην "
     "τη σε μας αυτό "},
    {"hindi",
     " के है में की का से और को पर यह ने हैं कि एक नहीं भी था इस हो जो तो वह कर "
     "ही "},
    {"hungarian",
     " a az és hogy nem is egy van volt meg csak de ez ha mint már még el azt "
     "ezt sem kell mert vagy minden lesz "},
    {"indonesian",
     " yang dan di itu dengan untuk tidak ini dari dalam akan pada juga saya ke "
     "karena adalah ada mereka atau oleh kami bisa sudah "},
    {"irish",
     " agus an na ar is le go sé bhí a i ag do tá ní sin seo bhfuil mar ach ó "
     "nach air chun atá den "},
    {"italian",
     " il di che la e per un del non una in della con le è si da dei nel sono "
     "alla gli ma anche come più "},
    {"lithuanian",
     " ir kad yra į iš su tai jis buvo o bet ne kaip už apie ar nuo tik prie po "
     "savo dar jo taip jau "},
    {"nepali",
     " छ र को मा हो पनि छन् गर्न भएको थियो यो लाई एक गरेको तथा का ले हुन्छ त "
     "भने नै गर्ने "},
    {"norwegian",
     " og i å det er en til av på som med for ikke den et han de har var jeg "
     "fra kan skal om seg eller ble etter også hva "},
    {"portuguese",
     " o de que e do da em um para com não uma os no se na por mais as dos como "
     "mas ao ele das são foi pelo "},
    {"romanian",
     " de și în la a cu că din pe un o nu este mai care pentru sunt au al fi "
     "ale lui si prin sau ce "},
    {"russian",
     " и в не на что с по это как но к из у за он от для то так же было о бы "
     "или его только все мы "},
    {"serbian",
     " и је да се у на су за од са не као то о што би али или који које није i "
     "je da se u na su za od sa kao što ali koji nije "},
    {"spanish",
     " el la de que y los en las del un una por con para es se no su al lo como "
     "más pero sus este son "},
    {"swedish",
     " och i att det är en till av på som med för inte den ett han de har var "
     "jag från kan ska om sig eller efter också vad "},
    {"tamil",
     " ஒரு என்று மற்றும் இந்த என்ற இது அந்த அவர் என உள்ள கொண்டு இருந்து தான் "
     "அது அவர்கள் பின்னர் பல "},
    {"turkish",
     " ve bir bu da de için ile ne çok daha olarak gibi olan en kadar var değil "
     "ama her sonra ya mi olduğu ben o "},
    {"yiddish",
     " און די איז צו אין פֿון פון דער אַז אז מיט האָט האט דאָס דאס אויף נישט "
     "ניט זיך וואָס וואס ער זיי א "},
}};

static_assert(kFrequentWords.size() <= 32, "each language has a bit of a LanguageSet");

std::size_t IndexOf(std::string_view language) {
  const auto* const found =
      std::find_if(kFrequentWords.begin(), kFrequentWords.end(),
                   [language](const FrequentWords& words) { return words.language == language; });
  return static_cast<std::size_t>(found - kFrequentWords.begin());
}

using LanguagesOfWords = std::unordered_map<std::string_view, LanguageSet>;

const LanguagesOfWords& Languages() {
  static FirstUse<LanguagesOfWords> languages;
  return languages.Get([] {
    LanguagesOfWords sets;
    for (std::size_t i = 0; i < kFrequentWords.size(); ++i) {
      std::string_view words = kFrequentWords[i].words.substr(1);
      while (!words.empty()) {
        const std::size_t end = words.find(' ');
        sets[words.substr(0, end)] |= LanguageSet{1} << i;
        words.remove_prefix(end + 1);
      }
    }
    return sets;
  });
}

bool IsWordByte(char byte) { return IsAsciiLetter(byte) || !IsAscii(byte); }

}  // namespace

LanguageGuess::LanguageGuess() : found_(kFrequentWords.size()) {}

void LanguageGuess::Add(std::string_view text) {
  if (bytes_ >= kMostBytes) return;
  text = text.substr(0, kMostBytesOfText);
  bytes_ += text.size();
  for (std::size_t start = 0; start < text.size();) {
    std::size_t end = start;
    while (end < text.size() && IsWordByte(text[end])) ++end;
    if (end > start) Count(text.substr(start, end - start));
    start = end + 1;
  }
}

void LanguageGuess::Count(std::string_view word) {
  ++words_;
  const auto found = Languages().find(LowerCase(word));
  if (found == Languages().end()) return;
  for (std::size_t i = 0; i < kFrequentWords.size(); ++i) found_[i] += found->second >> i & 1;
}

const Language* LanguageGuess::Guess() const {
  const auto most = std::max_element(found_.begin(), found_.end());
  const auto place = static_cast<std::size_t>(most - found_.begin());
  const bool is_clear = *most >= kLeastFound && *most * kLeastShare >= words_ &&
                        *most > found_[IndexOf(DefaultLanguage()->name)];
  return is_clear ? FindLanguage(kFrequentWords[place].language) : DefaultLanguage();
}

}  // namespace kestan::search
