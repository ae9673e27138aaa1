// SPDX-License-Identifier: GPL-3.0-or-later
#include <kestan/text/scratch_text.h>

#include <kestan/storage/memory/memory.h>

#include <algorithm>

namespace kestan {
namespace {

constexpr std::uint32_t kFirstSize = 4096;

}  // namespace

void ScratchBuffer::Grow(std::uint32_t new_size) {
  size = new_size;
  Reserve(new_size);
}

void ScratchBuffer::Enlarge(std::size_t count) {
  const std::size_t least = std::max<std::size_t>(count, size);
  // Long texts must not be moved for every line.
  std::size_t roomy = std::max(least, capacity + capacity / 2);
  bytes = static_cast<char*>(ReallocateWithSlack(capacity != 0 ? bytes : nullptr, least, &roomy));
  capacity = std::max<std::size_t>(roomy, 1);
}

void ScratchBuffer::Release() {
  if (capacity != 0) std::free(bytes);
  capacity = 0;
}

ScratchText::ScratchText(ScratchBuffer* buffer) : buffer_(*buffer) {
  if (buffer_.size < kFirstSize) buffer_.Grow(kFirstSize);
}

void ScratchText::MakeRoom(std::size_t room) {
  // The text may have passed the stated size: then the room left is negative.
  const auto left = static_cast<std::int64_t>(buffer_.size) - static_cast<std::int64_t>(used_);
  if (left < static_cast<std::int64_t>(room)) buffer_.Grow(buffer_.size * 2);
}

void ScratchText::AppendLine(std::string_view line, std::size_t room) {
  MakeRoom(room);
  Append(line);
  Append("\n");
}

char* ScratchText::Finish() {
  buffer_.Reserve(used_ + 1);
  buffer_.bytes[used_] = '\0';
  return buffer_.bytes;
}

}  // namespace kestan
