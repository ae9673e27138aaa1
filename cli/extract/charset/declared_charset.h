// What a page says of its own encoding.
#ifndef KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_
#define KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_

#include <string>
#include <string_view>
#include <vector>

namespace kestan_cli {

// Returns the encodings that the page `html` names, the one to believe first: those of its meta
// elements in their order, then that of an XML declaration. Comments, scripts and styles name none.
std::vector<std::string> DeclaredCharsets(std::string_view html);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_EXTRACT_CHARSET_DECLARED_CHARSET_H_
