// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commands/search/filters/file_type.h"

#include <algorithm>
#include <array>

#include "cli/extract/converter/converter.h"
#include "cli/extract/packed/compressed_name.h"
#include "cli/extract/roff/roff.h"

namespace kestan_cli {
namespace {

struct Kind {
  std::string_view name;
  std::string_view extensions;  // each between blanks
};

constexpr std::array<Kind, 4> kKinds = {
    {{"html", " html htm xhtml "},
     {"office", " docx odt epub pptx xlsx doc rtf "},
     {"text", " txt text md markdown rst "},
     {"source",
      " c h cc cpp cxx hh hpp hxx m mm cs java kt scala go rs swift d zig py pyi rb pl pm php lua "
      "tcl r jl hs ml mli ex exs erl clj lisp el scm js mjs cjs jsx ts tsx vue css scss sql sh "
      "bash "
      "zsh fish ps1 bat awk asm s f f90 pas ada adb ads vhd v sv cmake mk y l proto "}}};

bool Holds(const Kind& kind, const std::string& extension) {
  return kind.extensions.find(" " + extension + " ") != std::string_view::npos;
}

}  // namespace

bool IsFileOfType(std::string_view path, std::string_view type) {
  const std::string name = UnpackedName(std::string(path));
  const std::string extension = ExtensionOf(name);
  if (extension == type || ExtensionOf(path) == type) return !type.empty();
  if (type == "text" && extension.empty()) return true;
  if (type == "man") return IsExtensionOfRoff(extension);
  return std::any_of(kKinds.begin(), kKinds.end(),
                     [&](const Kind& kind) { return kind.name == type && Holds(kind, extension); });
}

}  // namespace kestan_cli
