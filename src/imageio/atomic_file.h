// Files replaced all at once: a reader, a crash or a full disk sees either the old
// file or the whole new one, never a part.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>

namespace imageio {

// Writes the parts, in order, as the new contents of the file at `path`. They go to
// a new file beside it (a unique name in the same folder, created exclusively and
// never through a link), which replaces `path` by a rename only once every byte is
// written and flushed to the disk. On any failure the new file is removed, `path`
// is left as it was and the result is false.
//
// A regular file at `path` is replaced only when it could have been written (a
// read-only file stays), and the new file gets its permissions; a new name gets
// those of a plainly created file (0666 less the umask). A link at `path` is
// replaced, not written through, so that a link planted under a predictable name
// in a shared folder cannot redirect the bytes into another file.
bool WriteFileAtomically(const std::string& path, std::initializer_list<std::span<const std::byte>> parts);

}  // namespace imageio
