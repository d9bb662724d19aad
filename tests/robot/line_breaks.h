// Line breaks: CR LF in the tool's own texts, one line feed in a widget.
#pragma once

#include <QString>

namespace vkm::robot {

inline QString with_cr_lf(QString text) {
    return text.remove('\r').replace("\n", "\r\n");
}

// The caption without the mark of its mnemonic: "&Stop" reads "Stop", "&&" "&".
inline QString without_mnemonic(const QString& text) {
    QString plain;
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) ++i;
        plain += text[i];
    }
    return plain;
}

}  // namespace vkm::robot
