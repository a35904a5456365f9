#pragma once

#include "Options.h"

namespace vk {

/// The noun "client": the mobile clients that are enrolled. Their activation keys are never shown.
int ListClients(const Arguments& arguments);
int ShowClient(const Arguments& arguments);
int DeleteClient(const Arguments& arguments);
/// Authorizes, or takes that back.
int AuthorizeClient(const Arguments& arguments);
int SetClientMode(const Arguments& arguments);
int SuspendClient(const Arguments& arguments);
int ResumeClient(const Arguments& arguments);

} // namespace vk
