#include "VKXmppGWUserSession.h"

void EmptyXmppGWUserSession(VKXmppGWUserSession* session) { *session = VKXmppGWUserSession{}; }

void EmptyXmppGWUserSessionList(std::vector<VKXmppGWUserSession>* sessions) { sessions->clear(); }
