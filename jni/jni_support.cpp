#include "jni_support.h"

#include <string>

namespace orlu {
namespace {

// The bytes of the character that begins with `lead`; 0 when none does. Four are more than the VM's own form
// of UTF-8 has, but VMs take them.
size_t lengthFromLead(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0 || lead > 0xF7) return 0;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// The bytes of the whole character at `text`; 0 when there is none. The terminating zero continues none.
size_t characterLength(const char* text) {
  const size_t length = lengthFromLead(static_cast<unsigned char>(*text));
  for (size_t i = 1; i < length; ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) return 0;
  }
  return length;
}

// The first byte that belongs to no character, or the terminating zero.
const char* skipCharacters(const char* text) {
  while (*text != '\0') {
    const size_t length = characterLength(text);
    if (length == 0) break;
    text += length;
  }
  return text;
}

// A failed call leaves an exception, under which nothing else may be called.
jstring newStringOrNull(JNIEnv* env, const char* text) {
  jstring string = env->NewStringUTF(text);
  return clearException(env) ? nullptr : string;
}

}  // namespace

jstring newString(JNIEnv* env, const char* text) {
  const char* bad = skipCharacters(text);
  if (*bad == '\0') return newStringOrNull(env, text);
  std::string mended = text;
  while (*bad != '\0') {
    mended[static_cast<size_t>(bad - text)] = '?';
    bad = skipCharacters(bad + 1);
  }
  return newStringOrNull(env, mended.c_str());
}

}  // namespace orlu
