// What a text says, with the text in the failure's message.
#ifndef TESTS_SUPPORT_TEXT_CHECKS_H
#define TESTS_SUPPORT_TEXT_CHECKS_H

#include <gtest/gtest.h>
#include <string>

inline testing::AssertionResult Has(const std::string &text, const std::string &part)
{
    const bool isThere = text.find(part) != std::string::npos;
    return (isThere ? testing::AssertionSuccess() : testing::AssertionFailure())
           << "\"" << part << "\" in \"" << text << "\"";
}

#endif
