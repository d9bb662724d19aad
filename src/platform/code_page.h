// The 8-bit code page of text files, which hold GBK: file names in captions may be
// Chinese.
#pragma once

#include <string>
#include <string_view>

namespace vkm {

class CodePage {
  public:
    virtual ~CodePage() = default;

    // Bytes of a text file as UTF-8. What is no character becomes U+FFFD.
    virtual std::string to_screen(std::string_view bytes) const = 0;

    // UTF-8 as bytes of a text file. Every character has its bytes, those that GBK
    // lacks too, so what is written reads back the same.
    virtual std::string to_file(std::string_view utf8) const = 0;
};

}  // namespace vkm
