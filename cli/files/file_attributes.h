// Copies the attributes of a file: owner, group, mode, access control list, extended attributes.
#ifndef KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_
#define KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_

namespace kestan_cli {

// Who owns the copy of a file: the owner of the file, or this user.
enum class NewOwner { kSame, kThisUser };

// Copies the attributes of the open file `source` to the open file `target`, which this user has
// made: the mode without setuid, setgid and the sticky bit; and where this user may, the group, the
// access control list, the extended attributes ("user.*") and, if `owner` is kSame, the owner.
// If the group cannot be kept, the new group and all others get only the rights that both had. If
// the list cannot be kept, only the owner gets any.
//   Returns  0 or the system's error number. Nobody ever has more rights than at the source.
int CopyAttributes(int source, int target, NewOwner owner);

}  // namespace kestan_cli

#endif  // KESTAN_CLI_FILES_FILE_ATTRIBUTES_H_
