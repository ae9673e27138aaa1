// What a file has beside its bytes: owner, group, mode, access control list, extended attributes.
#ifndef KESTAN_CLI_FILE_ATTRIBUTES_H_
#define KESTAN_CLI_FILE_ATTRIBUTES_H_

namespace kestan_cli {

// Whether a new file goes to the owner of the one that it is like.
enum class NewOwner { kSame, kThisUser };

// Gives the open file `target`, which this user has made, what the open file `source` has: where
// that is allowed, its group, its access control list, its extended attributes ("user.*") and, if
// `owner` is kSame, its owner; and its mode without the bits that lend rights to whoever runs it.
// Where the group or the list cannot be kept, those whom they told apart get no rights that one of
// them lacked.
//   Returns  0 or the system's error number; then nobody has got more rights than at the source.
int CopyAttributes(int source, int target, NewOwner owner);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILE_ATTRIBUTES_H_
