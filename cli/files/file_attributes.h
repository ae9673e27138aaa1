// What a file has beside its bytes: owner, group, mode, access control list, extended attributes.
#ifndef KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_
#define KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_

namespace kestan_cli {

// Whether a new file goes to the owner of the one that it is like.
enum class NewOwner { kSame, kThisUser };

// Gives the open file `target`, which this user has made, what the open file `source` has: where
// that is allowed, its group, its access control list, its extended attributes ("user.*") and, if
// `owner` is kSame, its owner; and its mode without the bits that lend rights to whoever runs it.
// Without the group, the new group and all others get only the rights that both had; without the
// list, only the owner gets any.
//   Returns  0 or the system's error number; then nobody has got more rights than at the source.
int CopyAttributes(int source, int target, NewOwner owner);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_
