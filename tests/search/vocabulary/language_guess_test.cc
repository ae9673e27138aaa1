// SPDX-License-Identifier: GPL-3.0-or-later
#include "search/vocabulary/language_guess.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace kestan::search {
namespace {

std::string Guess(const std::string& text) {
  LanguageGuess guess;
  guess.Add(text);
  return std::string(guess.Guess()->name);
}

TEST(LanguageGuessTest, SomeSentencesAreEnough) {
  const std::map<std::string, std::string> kTexts = {
      {"english", "The cat sat on the mat, and it was happy that the sun came in by the window."},
      {"german", "Die Katze saß auf der Matte und war froh, dass die Sonne durch das Fenster kam."},
      {"french", "Le chat est sur le tapis, et il est heureux que le soleil entre par la fenêtre."},
      {"spanish",
       "El gato se sentó en la alfombra y estaba feliz de que el sol entrara por la casa."},
      {"italian",
       "Il gatto è nella casa e la donna non vede che il sole è alto nel cielo di Roma."},
      {"portuguese",
       "O gato não está na casa, mas os cães estão no jardim com uma bola que foi do João."},
      {"dutch",
       "De kat zat op de mat en het was voor het eerst dat de zon niet door het raam kwam."},
      {"danish",
       "Katten sad på måtten, og den var glad for at solen kom ind af vinduet efter regn."},
      {"norwegian",
       "Katten satt på matta, og den var glad fordi hva som helst også skjedde etter regnet."},
      {"swedish",
       "Katten satt på mattan och den var glad för att solen kom in genom fönstret, inte sen."},
      {"finnish",
       "Kissa istui matolla ja se oli iloinen, että aurinko paistoi, mutta hän ei ollut kotona, "
       "kun tuli yö."},
      {"hungarian",
       "A macska az asztalon ült, és örült, hogy a nap nem ment le, de az eső is esett, meg egy "
       "kicsit fújt."},
      {"russian",
       "Кошка сидела на ковре, и она была рада, что солнце не ушло, но это было только раз."},
      {"greek",
       "Η γάτα είναι στο σπίτι και ο σκύλος είναι με την οικογένεια για να φάει από το τραπέζι."},
      {"turkish", "Kedi bir halının üstünde ve çok mutlu, ama bu köpek için daha iyi bir yer var."},
      {"arabic",
       "القط على السجادة في البيت وهو سعيد لأن الشمس دخلت من النافذة إلى الغرفة التي كان في ها"},
      {"indonesian",
       "Kucing itu ada di rumah dan tidak akan pergi ke pasar karena hujan, tetapi mereka bisa "
       "dengan mobil."},
  };
  for (const auto& [language, text] : kTexts) EXPECT_EQ(Guess(text), language) << text;
}

TEST(LanguageGuessTest, EnglishIsWhatShowsNoOther) {
  EXPECT_EQ(Guess(""), "english");
  EXPECT_EQ(Guess("der die das"), "english");  // too few words
  EXPECT_EQ(Guess("int main(void) { return x[17] + y; } // 北京"), "english");
  std::string rare = "der die das und nicht";
  for (int i = 0; i < 100; ++i) rare += " zzz";
  EXPECT_EQ(Guess(rare), "english");  // too few of many
}

TEST(LanguageGuessTest, MostOfTheTextsDecides) {
  LanguageGuess guess;
  for (int i = 0; i < 3; ++i) guess.Add("Das ist ein Haus, und es ist nicht aus Holz.");
  guess.Add("This is a house and it is not of wood.");
  EXPECT_EQ(guess.Guess()->name, "german");
}

TEST(LanguageGuessTest, CapitalsAreTheSameWords) {
  EXPECT_EQ(Guess("DAS IST EIN HAUS, UND ES IST NICHT AUS HOLZ."), "german");
}

TEST(LanguageGuessTest, LongTextsAreReadInPart) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "Das ist ein Haus. ";
  std::string english;
  for (int i = 0; i < 10000; ++i) english += "this is it ";
  EXPECT_EQ(Guess(text + english), "german");
}

}  // namespace
}  // namespace kestan::search
