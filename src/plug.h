// Calling upward. A lower operation that has to call a higher one holds a plug in
// its state record: a function pointer that src/window/wiring.cpp fills at
// start-up. A plug that is null is passed over.
#pragma once

#include <type_traits>

namespace vkm {

struct frmMain;

template <typename... Values>
void run_plug(frmMain& frm, void (*plug)(frmMain&, Values...),
              std::type_identity_t<Values>... values) {
    if (plug) plug(frm, values...);
}

}  // namespace vkm
