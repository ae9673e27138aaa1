// SPDX-License-Identifier: GPL-3.0-or-later
// What the sources include of each other, and what is wrong with that.
#ifndef KESTAN_TESTS_ARCHITECTURE_INCLUDES_H_
#define KESTAN_TESTS_ARCHITECTURE_INCLUDES_H_

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kestan_architecture {

using Paths = std::set<std::string>;

// The files of kestan/, search/ and cli/ by their paths from the root, each with those that it
// includes.
using Sources = std::map<std::string, Paths>;

// Directories that may stand side by side. None of them includes anything of another.
using Floor = std::vector<std::string>;

// Returns the paths of our own that the lines of `text` include.
Paths IncludesOf(std::string_view text);

Sources ReadSources(const std::string& root);

// Returns the headers of ICU and libxml2 that the lines of `text` include.
Paths LibraryIncludesOf(std::string_view text);

// The files of cli/ by their paths from the root, each with the headers of ICU and libxml2 that it
// includes.
Sources ReadLibraryIncludes(const std::string& root);

// Returns the paths of all files of the project, from the root, but for those of tests/.
Paths FilesOutsideTests(const std::string& root);

// Returns the headers that an installed library has, going by kestan/CMakeLists.txt.
Paths InstalledHeaders(const std::string& root);

// Each returns a line for every fault; none if all is well.

// A directory or a header that includes itself through others, as "a -> b -> a". One is enough.
std::vector<std::string> FindCycles(const Sources& sources);

// Includes that go to a higher floor or to the side, and files on no floor. `floors` begins at the
// ground. A floor is named by its first one or two directories; what lies deeper belongs to it.
std::vector<std::string> FindClimbs(const Sources& sources, const std::vector<Floor>& floors);

// Headers of the engine that search/ or cli/ includes, and of the search library that cli/ does,
// but no host could.
std::vector<std::string> FindPrivateHeaders(const Sources& sources, const Paths& installed);

// Includes between cli/readers, which becomes a module, and the rest, but for those of the header
// that describes the module; and files of the rest that include anything of `libraries`.
std::vector<std::string> FindModuleFaults(const Sources& sources, const Sources& libraries);

// Directories with more than 20 of these files.
std::vector<std::string> FindCrowdedDirectories(const Paths& files);

}  // namespace kestan_architecture

#endif  // KESTAN_TESTS_ARCHITECTURE_INCLUDES_H_
