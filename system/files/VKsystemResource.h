#pragma once

#include <map>
#include <string>

/// Texts by key, from a resource file of fixed-form lines: a key of up to ten characters, filled up with blanks, a white
/// space, the text. Lines that begin with "#" or have another form are passed over.
/// Loaded before threads run; reading needs no lock.
class VKsystemResource
{
public:
    virtual ~VKsystemResource();

    /// Adds what the file says; a key that is there already takes the new text. False, with nothing changed, when the
    /// file cannot be opened.
    bool Load(const std::string& path);
    void Unload();

    /// The text of a key, with or without the blanks behind it; "Unknown" when there is none.
    std::string GetString(const std::string& key) const;

private:
    void TakeLine(const std::string& line);

    std::map<std::string, std::string> m_mapTexts; ///< keys without the blanks behind them
};
