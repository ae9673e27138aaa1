// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/app/command.h"

#include <charconv>

#include "cli/console/message.h"

namespace kestan_cli {

Arguments Values::All(const std::string& name) const {
  const auto found = values_.find(name);
  return found != values_.end() ? found->second : Arguments();
}

std::string Values::Text(const std::string& name, const std::string& fallback) const {
  const auto found = values_.find(name);
  return found != values_.end() ? found->second.back() : fallback;
}

long long Values::Number(const std::string& name, long long fallback, long long least,
                         long long most) const {
  if (!Has(name)) return fallback;
  const std::string text = Text(name);
  long long number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool is_number = error == std::errc() && end == text.data() + text.size();
  if (is_number && number >= least && number <= most) return number;
  throw CommandError(name + " takes a number from " + std::to_string(least) + " to " +
                     std::to_string(most) + ", not " + Quoted(text));
}

std::string LongName(const Option& option) { return option.names.substr(option.names.find("--")); }

std::string DescriptionOf(const Option& option) {
  std::string purpose = option.purpose;
  for (const std::string& choice : option.choices) {
    purpose += (&choice == &option.choices.front() ? ": " : ", ") + choice;
  }
  return purpose;
}

std::string UsageOf(const Command& command) {
  std::string usage = "kestan " + command.name + (command.options.empty() ? "" : " [OPTIONS]");
  for (const Positional& positional : command.positionals) {
    switch (positional.count) {
      case Positional::Count::kOne:
        usage += " " + positional.name;
        break;
      case Positional::Count::kOptional:
        usage += " [" + positional.name + "]";
        break;
      case Positional::Count::kAny:
        usage += " [" + positional.name + "...]";
        break;
      case Positional::Count::kOneOrMore:
        usage += " " + positional.name + "...";
        break;
    }
  }
  return usage;
}

}  // namespace kestan_cli
