#ifndef TESTS_TEXTLINES_H
#define TESTS_TEXTLINES_H

/// \file
/// What the tests of the GLSL texts ask of a text.

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

/// Expects each line to stand in the text as a whole line, indentation apart and with its trailing blanks, in
/// this order.
inline void expectLines(const std::string &text, const std::vector<std::string> &lines)
{
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\n');
    std::istringstream stream(text);
    std::string found;
    for(const std::string &line : lines) {
        bool there = false;
        while(!there && std::getline(stream, found)) {
            const std::size_t first = found.find_first_not_of(' ');
            there = first != std::string::npos && found.substr(first) == line;
        }
        ASSERT_TRUE(there) << "missing, or out of order: " << line << "\n" << text;
    }
}

/// How often a word occurs in a text.
inline std::size_t count(const std::string &text, const std::string &word)
{
    std::size_t times = 0;
    for(std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++times;
    return times;
}

#endif
