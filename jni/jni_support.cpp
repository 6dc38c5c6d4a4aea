#include "jni_support.h"

namespace orlu {
namespace {

// Returns the length of the character that begins with `lead`; 0 if `lead` can't begin one. Characters of
// four bytes are not valid in modified UTF-8, but VMs accept them.
size_t lengthFromLead(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0 || lead > 0xF7) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// Returns the length of the complete character at `text`; 0 if there is none. Never reads past the
// terminating zero, which is not a continuation byte.
size_t characterLength(const char* text) {
  const size_t length = lengthFromLead(static_cast<unsigned char>(*text));
  for (size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return 0;
  }
  return length;
}

}  // namespace

void mendText(char* text) {
  while (*text != '\0') {
    const size_t length = characterLength(text);
    if (length == 0) *text = '?';
    text += length == 0 ? 1 : length;
  }
}

}  // namespace orlu
