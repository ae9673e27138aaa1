// SPDX-License-Identifier: GPL-3.0-or-later
// How precisely words of scripts without blanks are found: as pairs of characters, or as the words
// that ICU's dictionaries tell apart. A small set of texts and questions with their answers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "search/text/analyzer/dictionary_words.h"
#include "search/text/utf8.h"

namespace kestan::search {
namespace {

using Words = std::vector<std::u16string>;

struct Question {
  const char* text;
  std::set<int> relevant;  // numbers of texts, from 0
};

struct Collection {
  std::vector<const char*> texts;
  std::vector<Question> questions;
};

// Many of the texts hold a question's characters where two other words meet.
const Collection& Chinese() {
  static const Collection kCollection = {
      {"北京大学的学生在图书馆学习",
       "上海交通大学的实验室",
       "这个房间的背景音乐很好听",
       "人工智能改变了医院的工作",
       "工人在工厂里加班",
       "他研究生命的起源",
       "她是化学系的研究生",
       "南京市长江大桥",
       "市长参观了新学校",
       "乒乓球拍卖完了",
       "这幅画在香港拍卖",
       "和服是日本的传统服装",
       "技术和服务都很重要",
       "发展中国家的经济",
       "中国的铁路很长",
       "中华人民共和国",
       "人民银行提高了利率",
       "计算机网络的安全",
       "网上银行很方便",
       "电子商务网站"},
      {{"北京", {0}},      {"大学", {0, 1}},  {"学生", {0}},      {"背景", {2}},    {"音乐", {2}},
       {"人工", {3}},      {"工人", {4}},     {"工作", {3}},      {"研究", {5}},    {"研究生", {6}},
       {"生命", {5}},      {"长江", {7}},     {"市长", {8}},      {"大桥", {7}},    {"球拍", {9}},
       {"拍卖", {10}},     {"和服", {11}},    {"服务", {12}},     {"国家", {13}},   {"中国", {14}},
       {"人民", {15, 16}}, {"共和国", {15}},  {"银行", {16, 18}}, {"计算机", {17}}, {"网络", {17}},
       {"网站", {19}},     {"人工智能", {3}}, {"交通大学", {1}}}};
  return kCollection;
}

const Collection& Japanese() {
  static const Collection kCollection = {
      {"東京都に住んでいます", "京都の寺を訪れた", "東京タワーに登る", "日本語を勉強する",
       "日本の経済", "外国人参政権について", "人参とじゃがいもを買う", "国際連合の本部",
       "コンピュータの画面", "マイコンピュータを開く", "図書館で本を読む", "学校の図書室",
       "大学生の生活", "生活費が高い", "雨がふりそうです"},
      {{"京都", {1}},
       {"東京", {0, 2}},
       {"日本", {3, 4}},
       {"日本語", {3}},
       {"人参", {6}},
       {"外国人", {5}},
       {"本部", {7}},
       {"国際連合", {7}},
       {"画面", {8}},
       {"コンピュータ", {8, 9}},
       {"図書館", {10}},
       {"学校", {11}},
       {"図書", {10, 11}},
       {"大学生", {12}},
       {"大学", {12}},
       {"生活", {12, 13}},
       {"タワー", {2}},
       {"じゃがいも", {6}},
       {"参政権", {5}}}};
  return kCollection;
}

const Collection& Thai() {
  static const Collection kCollection = {
      {"นั่งตากลมที่ชายหาด", "เด็กคนนี้มีตาโต", "ภาษาไทยเรียนง่าย", "อาหารไทยอร่อย", "ร้านอาหารใกล้มหาวิทยาลัย",
       "มหาวิทยาลัยเชียงใหม่", "รถไฟฟ้าในกรุงเทพ", "ไฟฟ้าดับทั้งเมือง", "น้ำตกสวยมาก", "น้ำตาลทำจากอ้อย",
       "โรงเรียนอยู่ใกล้ตลาด", "นักเรียนไปโรงเรียน", "ราคาทองคำสูงขึ้น", "คำถามและคำตอบ", "ข้าวผัดกุ้ง",
       "ชาวนาปลูกข้าว", "ยามาถึงตอนเช้า", "กินยาหลังอาหาร"},
      {{"ภาษา", {2}},    {"ไทย", {2, 3}}, {"อาหาร", {3, 4, 17}}, {"มหาวิทยาลัย", {4, 5}},
       {"ไฟฟ้า", {6, 7}}, {"น้ำตก", {8}},   {"น้ำตาล", {9}},        {"โรงเรียน", {10, 11}},
       {"นักเรียน", {11}}, {"คำถาม", {13}}, {"ข้าว", {14, 15}},     {"ตลาด", {10}},
       {"ตา", {1}},      {"ยา", {17}},    {"เมือง", {7}},         {"ราคา", {12}},
       {"เด็ก", {1}},     {"กุ้ง", {14}},    {"เชียงใหม่", {5}},      {"มา", {16}}}};
  return kCollection;
}

std::u16string Utf16Of(const char* utf8) {
  const std::string_view text(utf8);
  std::u16string units;
  for (std::size_t at = 0; at < text.size();) {
    units += static_cast<char16_t>(TakeCode(text, &at));
  }
  return units;
}

Words PairsOf(const std::u16string& text, bool of_question) {
  Words pairs;
  for (std::size_t i = 0; i + 1 < text.size(); ++i) pairs.push_back(text.substr(i, 2));
  if (!of_question) pairs.push_back(text.substr(text.size() - 1));
  return pairs;
}

Words DictionaryWordsOf(const std::u16string& text, bool) {
  Words words;
  std::size_t start = 0;
  for (const std::size_t end : WordEnds(text)) {
    words.push_back(text.substr(start, end - start));
    start = end;
  }
  return words;
}

struct Quality {
  double precision = 0;  // of what is found, the share that is relevant
  double recall = 0;     // of what is relevant, the share that is found
};

// Asks all questions: a text is found that has the question's words one right after the other.
Quality Ask(const Collection& collection, Words (*words_of)(const std::u16string&, bool)) {
  double found = 0;
  double relevant = 0;
  double right = 0;
  for (const Question& question : collection.questions) {
    const Words asked = words_of(Utf16Of(question.text), true);
    relevant += static_cast<double>(question.relevant.size());
    for (std::size_t i = 0; i < collection.texts.size(); ++i) {
      const Words words = words_of(Utf16Of(collection.texts[i]), false);
      if (std::search(words.begin(), words.end(), asked.begin(), asked.end()) == words.end()) {
        continue;
      }
      ++found;
      right += question.relevant.count(static_cast<int>(i)) != 0 ? 1 : 0;
    }
  }
  return {right / found, right / relevant};
}

// The harmonic mean of both shares.
double Balance(const Quality& quality) {
  return 2 * quality.precision * quality.recall / (quality.precision + quality.recall);
}

struct Comparison {
  Quality pairs;
  Quality dictionary;
};

Comparison Compare(const char* name, const Collection& collection) {
  const Comparison compared = {Ask(collection, PairsOf), Ask(collection, DictionaryWordsOf)};
  std::printf("%s: pairs: precision %.2f, recall %.2f; dictionary: precision %.2f, recall %.2f\n",
              name, compared.pairs.precision, compared.pairs.recall, compared.dictionary.precision,
              compared.dictionary.recall);
  return compared;
}

// Returns one collection of two.
Collection Joined(const Collection& one, const Collection& two) {
  Collection joined = one;
  const int first = static_cast<int>(one.texts.size());
  joined.texts.insert(joined.texts.end(), two.texts.begin(), two.texts.end());
  for (const Question& question : two.questions) {
    joined.questions.push_back({question.text, {}});
    for (const int text : question.relevant) {
      joined.questions.back().relevant.insert(first + text);
    }
  }
  return joined;
}

// The dictionary tells Chinese words apart more precisely, but loses nearly a third of the Japanese
// ones. A text does not say which of both languages its characters are of.
TEST(UnspacedScriptsTest, PairsAreBetterForChineseAndJapaneseTogether) {
  EXPECT_EQ(Compare("Chinese", Chinese()).pairs.recall, 1);
  EXPECT_EQ(Compare("Japanese", Japanese()).pairs.recall, 1);
  const Comparison compared = Compare("both", Joined(Chinese(), Japanese()));
  EXPECT_GT(Balance(compared.pairs), Balance(compared.dictionary));
}

TEST(UnspacedScriptsTest, WordsOfADictionaryAreMorePreciseInThai) {
  const Comparison compared = Compare("Thai", Thai());
  EXPECT_GT(compared.dictionary.precision, compared.pairs.precision);
  EXPECT_GT(Balance(compared.dictionary), Balance(compared.pairs));
}

}  // namespace
}  // namespace kestan::search
