// What a target finds wrong with what it hears: told as it comes, and once more when it
// is asked for.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "simulators/bounded_list.h"

namespace vkm::sim {

class Objections {
  public:
    // The line that tells it.
    std::string note(std::string objection) {
        std::string line = "objection " + objection;
        append_bounded(not_asked_for_, std::move(objection), most_kept);
        return line;
    }

    // The line that answers whoever asks; what it holds is not told again.
    std::string answer() {
        std::string line = "ok";
        for (const std::string& objection : not_asked_for_) line += " [" + objection + "]";
        not_asked_for_.clear();
        return line;
    }

  private:
    static constexpr std::size_t most_kept = 500;
    std::vector<std::string> not_asked_for_;
};

}  // namespace vkm::sim
