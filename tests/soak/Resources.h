#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>

namespace test {

/// The resources that a process may leak: their names and amounts.
using Resources = std::map<std::string, std::ptrdiff_t>;

/// @p process is a folder of /proc.
inline Resources resources(const std::filesystem::path& process) {
    std::ifstream maps(process / "maps"), memory(process / "statm");
    std::ptrdiff_t pages = 0;
    memory >> pages >> pages;
    const auto entries = [&](const char* folder) {
        return std::distance(std::filesystem::directory_iterator(process / folder), {});
    };
    return {{"descriptors", entries("fd")},
            {"threads", entries("task")},
            {"mappings", std::count(std::istreambuf_iterator<char>(maps), {}, '\n')},
            {"kilobytes", pages * 4}};
}

/// Prints both, and expects that @p now does not exceed @p before. Memory and mappings may grow a
/// little: the allocator's free memory becomes fragmented. @p event names what happened meanwhile.
inline void expectNoGrowth(const Resources& before, const Resources& now,
                           const std::string& event) {
// A sanitizer keeps freed memory, and detects leaks itself.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr bool kSanitized = true;
#else
    constexpr bool kSanitized = false;
#endif
    std::map<std::string, std::ptrdiff_t> growth{{"mappings", 5}, {"kilobytes", 4096}};
    for (const auto& [name, amount] : now) {
        std::cout << name << ": " << before.at(name) << " before, now " << amount << '\n';
        if (kSanitized && growth.contains(name))
            continue;
        EXPECT_LE(amount, before.at(name) + growth[name]) << name << " after " << event;
    }
}

/// Returns how often a soak test repeats its work: the number in the environment variable
/// @p variable, which scripts/soak sets, or else a hundredth of @p wanted.
inline int repetitions(const char* variable, int wanted) {
    const char* value = std::getenv(variable);
    return value ? std::atoi(value) : wanted / 100;
}

} // namespace test
