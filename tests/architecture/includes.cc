// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/architecture/includes.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

namespace kestan_architecture {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostFiles = 20;
constexpr std::array<std::string_view, 4> kComponents{"kestan", "search", "c", "cli"};
constexpr std::array<std::string_view, 3> kLibraries{"unicode", "libxml", "gmime"};

// The folders of modules, and what describes each of them to all.
struct Module {
  std::string_view folder;
  std::string_view header;
};
constexpr std::array kModules{Module{"cli/readers", "cli/readers/readers.h"},
                              Module{"cli/mail_reader", "cli/mail_reader/mail_reader.h"}};

std::string TextOf(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string DirectoryOf(const std::string& path) { return path.substr(0, path.rfind('/')); }

bool IsIn(std::string_view path, std::string_view directory) {
  return path.size() > directory.size() && path.substr(0, directory.size()) == directory &&
         path[directory.size()] == '/';
}

// Returns nullptr for what belongs to no module.
const Module* ModuleOf(std::string_view path) {
  const auto* const found =
      std::find_if(kModules.begin(), kModules.end(),
                   [&](const Module& module) { return IsIn(path, module.folder); });
  return found != kModules.end() ? found : nullptr;
}

template <typename Directories>
bool IsInOneOf(std::string_view path, const Directories& directories) {
  return std::any_of(directories.begin(), directories.end(),
                     [&](std::string_view directory) { return IsIn(path, directory); });
}

// Returns where a file that hosts include as `path` lies.
std::string SourceOf(const std::string& path) {
  if (path == "kestan/c.h") return "c/include/" + path;
  const bool is_of_search = path == "kestan/search.h" || IsIn(path, "kestan/search");
  return is_of_search ? "search/include/" + path : path;
}

Paths AllIncludesOf(std::string_view text) {
  constexpr std::string_view kStart = "#include ";
  Paths includes;
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    if (line.compare(0, kStart.size(), kStart) != 0) continue;
    const std::size_t first = kStart.size() + 1;
    includes.insert(line.substr(first, line.find_first_of(">\"", first) - first));
  }
  return includes;
}

// Removes what includes nothing that is left, over and over. What stays is in a cycle or includes
// one.
Sources WithoutAcyclic(Sources graph) {
  for (bool changed = true; changed;) {
    changed = false;
    for (auto node = graph.begin(); node != graph.end();) {
      Paths& next = node->second;
      for (auto to = next.begin(); to != next.end();) {
        to = graph.count(*to) != 0 ? std::next(to) : next.erase(to);
      }
      changed = changed || next.empty();
      node = next.empty() ? graph.erase(node) : std::next(node);
    }
  }
  return graph;
}

// Returns a cycle of the graph, if it has one.
std::optional<std::string> CycleIn(const Sources& graph) {
  const Sources cyclic = WithoutAcyclic(graph);
  if (cyclic.empty()) return std::nullopt;
  std::vector<std::string> way{cyclic.begin()->first};
  for (;;) {
    const std::string& next = *cyclic.at(way.back()).begin();
    auto met = std::find(way.begin(), way.end(), next);
    if (met == way.end()) {
      way.push_back(next);
      continue;
    }
    std::string cycle;
    for (; met != way.end(); ++met) cycle += *met + " -> ";
    return cycle + next;
  }
}

// Returns which directories include which others.
Sources DirectoriesOf(const Sources& sources) {
  Sources directories;
  for (const auto& [path, includes] : sources) {
    for (const std::string& include : includes) {
      const std::string from = DirectoryOf(path);
      const std::string to = DirectoryOf(include);
      if (from != to) directories[from].insert(to);
    }
  }
  return directories;
}

// Returns the name of the floor of `path`: "a/b" for "a/b/c.h" and "a/b/c/d.h", "a" for "a/b.h".
std::string FloorNameOf(const std::string& path) {
  const std::size_t first = path.find('/');
  const std::size_t second = path.find('/', first + 1);
  return path.substr(0, second != std::string::npos ? second : first);
}

// Returns the number of the floor, counted from the ground; no value if there is none.
std::optional<std::size_t> HeightOf(const std::string& name, const std::vector<Floor>& floors) {
  for (std::size_t height = 0; height < floors.size(); ++height) {
    const Floor& floor = floors[height];
    if (std::find(floor.begin(), floor.end(), name) != floor.end()) return height;
  }
  return std::nullopt;
}

// Reads the sources of `component` and what `includes_of` finds in each.
Sources ReadComponent(const std::string& root, std::string_view component,
                      Paths (*includes_of)(std::string_view text)) {
  Sources sources;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(root) / component)) {
    const std::string extension = entry.path().extension().string();
    if (extension != ".h" && extension != ".cc") continue;
    sources[entry.path().lexically_relative(root).string()] = includes_of(TextOf(entry.path()));
  }
  return sources;
}

}  // namespace

Paths IncludesOf(std::string_view text) {
  Paths includes;
  for (const std::string& path : AllIncludesOf(text)) {
    if (IsInOneOf(path, kComponents)) includes.insert(SourceOf(path));
  }
  return includes;
}

Paths LibraryIncludesOf(std::string_view text) {
  Paths includes;
  for (const std::string& path : AllIncludesOf(text)) {
    const bool is_libarchive = path == "archive.h" || path == "archive_entry.h";
    if (is_libarchive || path == "zlib.h" || IsInOneOf(path, kLibraries)) includes.insert(path);
  }
  return includes;
}

Sources ReadSources(const std::string& root) {
  Sources sources;
  for (const std::string_view component : kComponents) {
    sources.merge(ReadComponent(root, component, IncludesOf));
  }
  return sources;
}

Sources ReadLibraryIncludes(const std::string& root) {
  return ReadComponent(root, "cli", LibraryIncludesOf);
}

Paths FilesOutsideTests(const std::string& root) {
  Paths files;
  for (const char* part : {"kestan", "search", "c", "cli", "bench", "cmake", "docs", "examples",
                           "fuzz", "packaging", "scripts"}) {
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(root) / part)) {
      if (entry.is_regular_file()) files.insert(entry.path().lexically_relative(root).string());
    }
  }
  return files;
}

Paths InstalledHeaders(const std::string& root) {
  std::istringstream words(TextOf(fs::path(root) / "kestan/CMakeLists.txt"));
  Paths headers;
  std::string word;
  while (words >> word && word != "set(KESTAN_PUBLIC_HEADERS") continue;
  while (words >> word) {
    const bool is_last = word.back() == ')';
    if (is_last) word.pop_back();
    headers.insert("kestan/" + word);
    if (is_last) break;
  }
  return headers;
}

std::vector<std::string> FindCycles(const Sources& sources) {
  std::vector<std::string> cycles;
  for (const Sources& graph : {sources, DirectoriesOf(sources)}) {
    if (const auto cycle = CycleIn(graph)) cycles.push_back(*cycle);
  }
  return cycles;
}

std::vector<std::string> FindClimbs(const Sources& sources, const std::vector<Floor>& floors) {
  std::vector<std::string> climbs;
  for (const auto& [path, includes] : sources) {
    const std::string from = FloorNameOf(path);
    const auto height = HeightOf(from, floors);
    if (!height.has_value()) climbs.push_back(path + " is on no floor");
    for (const std::string& include : includes) {
      const std::string to = FloorNameOf(include);
      const auto target = HeightOf(to, floors);
      if (from == to || !height.has_value() || (target.has_value() && *target < *height)) continue;
      climbs.push_back(path + " includes " + include);
    }
  }
  return climbs;
}

std::vector<std::string> FindPrivateHeaders(const Sources& sources, const Paths& installed) {
  std::vector<std::string> faults;
  for (const auto& [path, includes] : sources) {
    if (IsIn(path, "kestan")) continue;
    for (const std::string& include : includes) {
      const bool is_inside_engine = IsIn(include, "kestan") && installed.count(include) == 0;
      const bool is_inside_search = IsIn(include, "search") && !IsIn(include, "search/include");
      const bool is_host_of_search = IsIn(path, "c") || IsIn(path, "cli");
      if (is_inside_engine || (is_host_of_search && is_inside_search)) {
        faults.push_back(path + " includes " + include);
      }
    }
  }
  return faults;
}

std::vector<std::string> FindModuleFaults(const Sources& sources, const Sources& libraries) {
  std::vector<std::string> faults;
  for (const auto& [path, includes] : sources) {
    for (const std::string& include : includes) {
      if (ModuleOf(path) == ModuleOf(include)) continue;
      const Module* const module = ModuleOf(include);
      if (module == nullptr || include != module->header) {
        faults.push_back(path + " includes " + include);
      }
    }
  }
  for (const auto& [path, includes] : libraries) {
    if (ModuleOf(path) != nullptr) continue;
    for (const std::string& include : includes) faults.push_back(path + " includes " + include);
  }
  return faults;
}

std::vector<std::string> FindCrowdedDirectories(const Paths& files) {
  std::map<std::string, std::size_t> counts;
  for (const std::string& file : files) ++counts[DirectoryOf(file)];
  std::vector<std::string> crowded;
  for (const auto& [directory, count] : counts) {
    if (count > kMostFiles) crowded.push_back(directory + ": " + std::to_string(count));
  }
  return crowded;
}

}  // namespace kestan_architecture
