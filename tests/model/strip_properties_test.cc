// SPDX-License-Identifier: GPL-3.0-or-later
// The stripping functions do what their second telling does, to the last byte of the buffer.
// RC_PARAMS="max_success=100000" runs longer.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cstring>
#include <memory>

#include "tests/model/strip.h"
#include "tests/model/world.h"

namespace kestan_model {
namespace {

namespace gen = rc::gen;

// Memory of exactly `bytes` bytes, so that a sanitizer sees the first one outside.
std::unique_ptr<char[]> Room(std::size_t bytes, const std::string& text) {
  std::unique_ptr<char[]> room(new char[bytes]);
  std::memset(room.get(), '#', bytes);
  std::memcpy(room.get(), text.data(), text.size());
  return room;
}

// The whole buffer after a function has written `stripped` over the beginning of `text`.
std::string Overwritten(const std::string& text, const Stripped& stripped) {
  const std::string written = stripped.text + std::string(stripped.ends_in_zero ? 1 : 0, '\0');
  return text.size() <= written.size() ? written : written + text.substr(written.size());
}

// Calls `function` on a buffer of the text's length and `spare` bytes more.
template <typename Function>
void Check(const std::string& text, std::size_t spare, const Stripped& expected,
           const Function& function) {
  const std::string before = text + std::string(spare, '#');
  const auto room = Room(before.size(), before);
  const int length = function(room.get(), static_cast<unsigned>(text.size()));
  RC_ASSERT(static_cast<std::size_t>(length) == expected.text.size());
  const std::string after(room.get(), before.size());
  RC_ASSERT(Shown(after) == Shown(Overwritten(before, expected)));
}

// Concatenated fragments, each of a kind that the functions treat differently.
rc::Gen<std::string> TextOf(const rc::Gen<std::string>& piece) {
  return gen::map(gen::container<std::vector<std::string>>(piece),
                  [](const std::vector<std::string>& pieces) {
                    std::string text;
                    for (const std::string& each : pieces) text += each;
                    return text;
                  });
}

rc::Gen<std::string> AnyBytes() { return gen::container<std::string>(gen::arbitrary<char>()); }

rc::Gen<std::string> Prose() {
  return TextOf(gen::weightedOneOf<std::string>(
      {{6, gen::element<std::string>("the", "The", "cat", "don't", "a", "to", "O'Neill", "xyz")},
       {3, gen::element<std::string>(" ", "  ", "\n", "\n\n", "'", "''", "-", "7", ".", "\r\n")},
       {1, gen::map(gen::inRange(62, 67), [](int n) { return std::string(std::size_t(n), 'w'); })},
       {1, gen::map(gen::arbitrary<char>(), [](char byte) { return std::string(1, byte); })}}));
}

// A line of `length` bytes with `first` in front and `inside` somewhere in it.
std::string LineOf(int length, char first, char inside, bool ended) {
  std::string line(static_cast<std::size_t>(length), 'x');
  line[line.size() / 2] = inside;
  line[0] = first;
  return ended ? line + "\n" : line;
}

rc::Gen<std::string> Lines() {
  const auto lengths =
      gen::weightedElement<int>({{4, 61}, {4, 72}, {1, 60}, {1, 71}, {1, 73}, {3, 3}});
  const auto firsts = gen::weightedElement<char>({{4, 'M'}, {2, 'x'}, {1, '-'}, {1, ' '}});
  const auto insides =
      gen::weightedElement<char>({{8, 'x'}, {1, '\r'}, {1, ' '}, {1, '\xe9'}, {1, 'M'}});
  const auto ended = gen::weightedElement<bool>({{9, true}, {1, false}});
  return TextOf(gen::weightedOneOf<std::string>(
      {{8, gen::apply(LineOf, lengths, firsts, insides, ended)},
       {2, gen::element<std::string>("\n", "\r\n", "M\n", "MM\n", "a line of words\n", "-\n")},
       {1, gen::map(gen::arbitrary<char>(), [](char byte) { return std::string(1, byte); })}}));
}

rc::Gen<std::string> Texts() { return gen::oneOf(AnyBytes(), Prose(), Lines()); }

// A text takes no time, so a case tries many.
rc::Gen<std::vector<std::string>> ManyOf(const rc::Gen<std::string>& texts) {
  return gen::container<std::vector<std::string>>(texts);
}

RC_GTEST_PROP(StripNonWordsTest, DoesWhatTheModelDoes, ()) {
  for (const std::string& text : *ManyOf(Texts())) {
    Check(text, 1, StripNonWords(text), Kestan::StripNonWords);
  }
}

RC_GTEST_PROP(StripBadLinesTest, DoesWhatTheModelDoes, ()) {
  for (const std::string& text : *ManyOf(gen::oneOf(AnyBytes(), Lines()))) {
    Check(text, 0, StripBadLines(text), Kestan::StripBadLines);
  }
}

RC_GTEST_PROP(StripWordsTest, DoesWhatTheModelDoes, ()) {
  const std::string stop_text = *gen::element<std::string>("", " ", "the", "THE,xyz", "7cat dont ");
  const auto stop_list = *gen::container<std::vector<std::string>>(
      gen::element<std::string>("the", "Dont", "don't", "", "Cat", "wwwwwwwwww", "oneill"));
  std::vector<const char*> pointers;
  for (const std::string& word : stop_list) pointers.push_back(word.c_str());
  pointers.push_back(nullptr);
  const auto function = [&](char* room, unsigned length) {
    return Kestan::StripWords(room, length, stop_text.c_str(), pointers.data());
  };
  for (const std::string& text : *ManyOf(Texts())) {
    Check(text, 0, StripWords(text, stop_text, stop_list), function);
  }
}

RC_GTEST_PROP(StripPropertiesTest, InAChainDoesWhatTheModelDoes, ()) {
  const std::string text = *Texts();
  const std::string lines = StripBadLines(text).text;
  const std::string words = StripNonWords(lines).text;
  const auto room = Room(text.size() + 1, text);
  const char* const none[] = {nullptr};
  int length = Kestan::StripBadLines(room.get(), static_cast<unsigned>(text.size()));
  length = Kestan::StripNonWords(room.get(), static_cast<unsigned>(length));
  length = Kestan::StripWords(room.get(), static_cast<unsigned>(length), "the", none);
  RC_ASSERT(Shown(std::string(room.get(), static_cast<std::size_t>(length))) ==
            Shown(StripWords(words, "the", {}).text));
}

}  // namespace
}  // namespace kestan_model
