// GBK by the codecs that Qt brings along.
#pragma once

#include "platform/code_page.h"

namespace vkm {

class QtCodePage final : public CodePage {
  public:
    std::string to_screen(std::string_view bytes) const override;
    std::string to_file(std::string_view utf8) const override;
};

}  // namespace vkm
