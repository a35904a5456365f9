#pragma once

#include <string>
#include <vector>

/// \file
/// PIN templates of carriers: pairs of a length and a letter such as "3N4A", N for digits, A for letters and digits.

/// A part of a PIN.
struct VKPinToken
{
    int length = 0;  ///< 0 for any length, which takes the rest
    char kind = 'N'; ///< 'N' digits, 'A' letters or digits
};

/// Takes a template apart; gives back how many tokens it has, 0 for an empty template, -1 for an invalid one.
int GetTokensFromPinTemplate(const std::string& pinTemplate, std::vector<VKPinToken>& tokens);

/// Whether a PIN is as the template says. An empty template takes any PIN, an invalid one none.
bool ValidatePinAgainstPinTemplate(const std::string& pin, const std::string& pinTemplate);
