// Options of a program's command line, and commands on its standard input, from
// one table each.
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vkm::sim {

template <typename Arguments>
struct Option {
    std::string_view name;
    std::string_view value;  // what it is called in the help; empty: the option has none
    std::string_view help;
    bool (*apply)(Arguments&, std::string_view value);  // false: the value is of no use
};

// Options that stand together in the help.
template <typename Arguments>
struct OptionGroup {
    std::string_view only_with;  // the option without which they mean nothing; empty: none
    std::span<const Option<Arguments>> options;
};

// Where a word stands among the groups; both null when it is no option.
template <typename Arguments>
struct FoundOption {
    const OptionGroup<Arguments>* group = nullptr;
    const Option<Arguments>* option = nullptr;
};

template <typename Arguments, std::size_t N>
FoundOption<Arguments> find_option(const OptionGroup<Arguments> (&groups)[N],
                                   std::string_view name) {
    for (const auto& group : groups)
        for (const auto& option : group.options)
            if (option.name == name) return {&group, &option};
    return {};
}

// Empty, or what is wrong with the words.
template <typename Arguments, std::size_t N>
std::string apply_options(const OptionGroup<Arguments> (&groups)[N],
                          std::span<const char* const> words, Arguments& arguments) {
    std::vector<FoundOption<Arguments>> told;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string name = words[i];
        const auto [group, option] = find_option(groups, name);
        if (!option) return "there is no option " + name;
        told.push_back({group, option});
        std::string_view value;
        if (!option->value.empty()) {
            if (i + 1 == words.size()) return name + " needs a value";
            value = words[++i];
        }
        if (!option->apply(arguments, value))
            return option->value.empty() ? name + " can't be told here"
                                         : name + " can't be \"" + std::string(value) + "\"";
    }
    for (const auto& [group, option] : told) {
        const std::string_view needed = group->only_with;
        const auto is_needed = [needed](const auto& each) { return each.option->name == needed; };
        if (!needed.empty() && std::none_of(told.begin(), told.end(), is_needed))
            return std::string(option->name) + " is for " + std::string(needed);
    }
    return {};
}

template <typename Arguments>
struct ArgumentsRead {
    Arguments arguments;
    std::string error;  // empty when all is well
};

template <typename Arguments, std::size_t N>
ArgumentsRead<Arguments> read_options(const OptionGroup<Arguments> (&groups)[N],
                                      std::span<const char* const> words) {
    ArgumentsRead<Arguments> read;
    read.error = apply_options(groups, words, read.arguments);
    return read;
}

// One line for each option.
template <typename Arguments>
std::string options_help(const OptionGroup<Arguments>& group) {
    std::string text;
    for (const auto& option : group.options) {
        std::string line = "  " + std::string(option.name);
        if (!option.value.empty()) line += " " + std::string(option.value);
        line.resize(std::max<std::size_t>(line.size() + 2, 30), ' ');
        text += line + std::string(option.help) + "\n";
    }
    return text;
}

// Each group under its heading.
template <typename Arguments, std::size_t N>
std::string options_help(const OptionGroup<Arguments> (&groups)[N]) {
    std::string text;
    for (const auto& group : groups) {
        if (!group.only_with.empty()) text += "\nWith " + std::string(group.only_with) + ":\n";
        text += options_help(group);
    }
    return text;
}

// The line to answer, "ok ..." or "error ...".
template <typename Bench>
struct Command {
    std::string_view name;
    std::string (*run)(Bench&, std::string_view argument);
};

template <typename Bench, std::size_t N>
std::string run_command(const Command<Bench> (&commands)[N], Bench& bench,
                        std::string_view command) {
    const std::size_t space = std::min(command.find(' '), command.size());
    const std::string_view name = command.substr(0, space);
    const std::string_view argument = command.substr(std::min(space + 1, command.size()));
    for (const auto& row : commands)
        if (row.name == name) return row.run(bench, argument);
    return "error no such command: " + std::string(name);
}

}  // namespace vkm::sim
