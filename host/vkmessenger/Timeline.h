#pragma once

#include "HostMessageFile.h"

#include <cstdio>
#include <string>

namespace vk {

/// Prints what happens to the messages, as it happens: readable lines, or one JSON object a line.
class Timeline
{
public:
    enum class Form { Readable, Json };

    /// Writes to `out`, which must outlive it; each event is flushed.
    Timeline(Form form, std::FILE* out) : m_form(form), m_out(out) {}

    /// One event: "send" for what SendAMessage returned, "report" for a file that came back. Throws std::runtime_error
    /// when the line cannot be written.
    void Show(const std::string& jobId, const char* event, const MessageReport& report);

private:
    Form m_form;
    std::FILE* m_out;
};

} // namespace vk
