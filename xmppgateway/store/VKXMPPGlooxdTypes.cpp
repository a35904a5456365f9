#include "VKXMPPGlooxdTypes.h"

#include <gloox/gloox.h>

static_assert(gloox::ConnNotConnected == 18 && gloox::StreamErrorUndefined == 24 &&
                  gloox::StanzaErrorTypeUndefined == 5 && gloox::StanzaErrorUndefined == 24,
              "gloox numbers its errors in another way: the rows below no longer cover them");

const VKXMPPGlooxdTypes::Row VKXMPPGlooxdTypes::GlooxConnErrTable[20] = {
    {gloox::ConnNoError, "Not really an error. Everything went just fine."},
    {gloox::ConnStreamError, "A stream error occurred. The stream has been closed."},
    {gloox::ConnStreamVersionError, "The incoming stream's version is not supported."},
    {gloox::ConnStreamClosed, "The stream has been closed (by the server)."},
    {gloox::ConnProxyAuthRequired, "The HTTP/SOCKS5 proxy requires authentication."},
    {gloox::ConnProxyAuthFailed, "HTTP/SOCKS5 proxy authentication failed."},
    {gloox::ConnProxyNoSupportedAuth, "The HTTP/SOCKS5 proxy requires an unsupported auth mechanism."},
    {gloox::ConnIoError, "An I/O error occurred."},
    {gloox::ConnParseError, "An XML parse error occurred."},
    {gloox::ConnConnectionRefused, "The connection was refused by the server (on the socket level)."},
    {gloox::ConnDnsError, "Resolving the server's HOSTNAME failed."},
    {gloox::ConnOutOfMemory, "Out of memory."},
    {gloox::ConnNoSupportedAuth,
     "The auth mechanisms the server offers are not supported or the server offered no auth "
     "mechanisms at all."},
    {gloox::ConnTlsFailed, "The server's certificate could not be verified or the TLS handshake did not complete "
                           "successfully."},
    {gloox::ConnTlsNotAvailable, "The server didn't offer TLS while it was set to be required, or TLS was not compiled "
                                 "in."},
    {gloox::ConnCompressionFailed, "Negotiating/initializing compression failed."},
    {gloox::ConnAuthenticationFailed, "Authentication failed. Username/password wrong or account does not exist."},
    {gloox::ConnUserDisconnected, "The user (or higher-level protocol) requested a disconnect."},
    {gloox::ConnNotConnected, "There is no active connection."},
    {-1, ""}};

const VKXMPPGlooxdTypes::Row VKXMPPGlooxdTypes::GlooxStanzaErrTypeTable[7] = {
    {gloox::StanzaErrorTypeAuth, "Retry after providing credentials."},
    {gloox::StanzaErrorTypeCancel, "Do not retry (the error is unrecoverable)."},
    {gloox::StanzaErrorTypeContinue, "Proceed (the condition was only a warning)."},
    {gloox::StanzaErrorTypeModify, "Retry after changing the data sent."},
    {gloox::StanzaErrorTypeWait, "Retry after waiting (the error is temporary)."},
    {gloox::StanzaErrorTypeUndefined, "No error."},
    {-1, ""}};

const VKXMPPGlooxdTypes::Row VKXMPPGlooxdTypes::GlooxStreamErrTable[26] = {
    {gloox::StreamErrorBadFormat,
     "The entity has sent XML that cannot be processed; this error MAY be used instead of the more specific "
     "XML-related "
     "errors, such as <bad-namespace-prefix/>, <invalid-xml/>, <restricted-xml/>, <unsupported-encoding/>, and "
     "<xml-not-well-formed/>, although the more specific errors are preferred."},
    {gloox::StreamErrorBadNamespacePrefix,
     "The entity has sent a namespace prefix that is unsupported, or has sent no namespace prefix on an element that "
     "requires such a prefix (see XML Namespace Names and Prefixes (Section 11.2))."},
    {gloox::StreamErrorConflict,
     "The server is closing the active stream for this entity because a new stream has been "
     "initiated that conflicts with the existing stream."},
    {gloox::StreamErrorConnectionTimeout, "The entity has not generated any traffic over the stream for some period of "
                                          "time (configurable according to a local service policy)."},
    {gloox::StreamErrorHostGone,
     "The value of the 'to' attribute provided by the initiating entity in the stream header "
     "corresponds to a hostname that is no longer hosted by the server."},
    {gloox::StreamErrorHostUnknown, "The value of the 'to' attribute provided by the initiating entity in the stream "
                                    "header does not correspond to a hostname that is hosted by the server."},
    {gloox::StreamErrorImproperAddressing,
     "A stanza sent between two servers lacks a 'to' or 'from' attribute (or the attribute has no value)."},
    {gloox::StreamErrorInternalServerError, "The server has experienced a misconfiguration or an otherwise-undefined "
                                            "internal error that prevents it from servicing the stream."},
    {gloox::StreamErrorInvalidFrom,
     "The JID or hostname provided in a 'from' address does not match an authorized JID or validated domain negotiated "
     "between servers via SASL or dialback, or between a client and a server via authentication and resource binding."},
    {gloox::StreamErrorInvalidId,
     "The stream ID or dialback ID is invalid or does not match an ID previously provided."},
    {gloox::StreamErrorInvalidNamespace,
     "The streams namespace name is something other than \"http://etherx.jabber.org/streams\" or the dialback "
     "namespace "
     "name is something other than \"jabber:server:dialback\" (see XML Namespace Names and Prefixes (Section 11.2))."},
    {gloox::StreamErrorInvalidXml,
     "The entity has sent invalid XML over the stream to a server that performs validation "
     "(see Validation (Section 11.3))."},
    {gloox::StreamErrorNotAuthorized, "The entity has attempted to send data before the stream has been authenticated, "
                                      "or otherwise is not authorized to "
                                      "perform an action related to stream negotiation; the receiving entity MUST NOT "
                                      "process the offending stanza before "
                                      "sending the stream error."},
    {gloox::StreamErrorPolicyViolation,
     "The entity has violated some local service policy; the server MAY choose to specify the policy in the <text/> "
     "element or an application-specific condition element."},
    {gloox::StreamErrorRemoteConnectionFailed, "The server is unable to properly connect to a remote entity that is "
                                               "required for authentication or authorization."},
    {gloox::StreamErrorResourceConstraint, "The server lacks the system resources necessary to service the stream."},
    {gloox::StreamErrorRestrictedXml,
     "The entity has attempted to send restricted XML features such as a comment, processing instruction, DTD, entity "
     "reference, or unescaped character (see Restrictions (Section 11.1))."},
    {gloox::StreamErrorSeeOtherHost,
     "The server will not provide service to the initiating entity but is redirecting traffic to another host; the "
     "server SHOULD specify the alternate hostname or IP address (which MUST be a valid domain identifier) as the XML "
     "character data of the <see-other-host/> element."},
    {gloox::StreamErrorSystemShutdown, "The server is being shut down and all active streams are being closed."},
    {gloox::StreamErrorUndefinedCondition, "The error condition is not one of those defined by the other conditions in "
                                           "this list; this error condition SHOULD "
                                           "be used only in conjunction with an application-specific condition."},
    {gloox::StreamErrorUnsupportedEncoding, "The initiating entity has encoded the stream in an encoding that is not "
                                            "supported by the server (see Character Encoding (Section 11.5))."},
    {gloox::StreamErrorUnsupportedStanzaType,
     "The initiating entity has sent a first-level child of the stream that is not supported by the server."},
    {gloox::StreamErrorUnsupportedVersion,
     "The value of the 'version' attribute provided by the initiating entity in the stream header specifies a version "
     "of "
     "XMPP that is not supported by the server; the server MAY specify the version(s) it supports in the <text/> "
     "element."},
    {gloox::StreamErrorXmlNotWellFormed,
     "The initiating entity has sent XML that is not well-formed as defined by [XML]."},
    {gloox::StreamErrorUndefined,
     "An undefined/unknown error occurred. Also used if a disconnect was user-initiated. Also set before and during a "
     "established connection (where obviously no error occurred)."},
    {-1, ""}};

const VKXMPPGlooxdTypes::Row VKXMPPGlooxdTypes::GlooxStanzaErrTable[26] = {
    {gloox::StanzaErrorBadRequest,
     "The sender has sent XML that is malformed or that cannot be processed (e.g., an IQ stanza that includes an "
     "unrecognized value of the 'type' attribute). The associated error type SHOULD be \"modify\"."},
    {gloox::StanzaErrorConflict,
     "Access cannot be granted because an existing resource or session exists with the same "
     "name or address. The associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorFeatureNotImplemented,
     "The feature requested is not implemented by the recipient or server and therefore cannot be processed. The "
     "associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorForbidden, "The requesting entity does not possess the required permissions to perform the "
                                  "action. The associated error type SHOULD be \"auth\"."},
    {gloox::StanzaErrorGone,
     "The recipient or server can no longer be contacted at this address (the error stanza MAY contain a new address "
     "in "
     "the XML character data of the <gone/> element). The associated error type SHOULD be \"modify\"."},
    {gloox::StanzaErrorInternalServerError,
     "The server could not process the stanza because of a misconfiguration or an otherwise-undefined internal server "
     "error. The associated error type SHOULD be \"wait\"."},
    {gloox::StanzaErrorItemNotFound,
     "The addressed JID or item requested cannot be found. The associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorJidMalformed,
     "The sending entity has provided or communicated an XMPP address (e.g., a value of the 'to' attribute) or aspect "
     "thereof (e.g., a resource identifier) that does not adhere to the syntax defined in Addressing Scheme (Section "
     "3). "
     "The associated error type SHOULD be \"modify\"."},
    {gloox::StanzaErrorNotAcceptable,
     "The recipient or server understands the request but is refusing to process it because it does not meet criteria "
     "defined by the recipient or server (e.g., a local policy regarding acceptable words in messages). The associated "
     "error type SHOULD be \"modify\"."},
    {gloox::StanzaErrorNotAllowed, "The recipient or server does not allow any entity to perform the action. The "
                                   "associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorNotAuthorized,
     "The sender must provide proper credentials before being allowed to perform the action, or has provided improper "
     "credentials. The associated error type SHOULD be \"auth\"."},
    {gloox::StanzaErrorNotModified, "The item requested has not changed since it was last requested. The associated "
                                    "error type SHOULD be \"continue\"."},
    {gloox::StanzaErrorPaymentRequired,
     "The requesting entity is not authorized to access the requested service because payment is required. The "
     "associated error type SHOULD be \"auth\"."},
    {gloox::StanzaErrorRecipientUnavailable,
     "The intended recipient is temporarily unavailable (note: an application MUST NOT return this error if doing so "
     "would provide information about the intended recipient's network availability to an entity that is not "
     "authorized "
     "to know such information). The associated error type SHOULD be \"wait\"."},
    {gloox::StanzaErrorRedirect,
     "The recipient or server is redirecting requests for this information to another entity, usually temporarily (the "
     "error stanza SHOULD contain the alternate address, which MUST be a valid JID, in the XML character data of the "
     "<redirect/> element). The associated error type SHOULD be \"modify\"."},
    {gloox::StanzaErrorRegistrationRequired,
     "The requesting entity is not authorized to access the requested service because registration is required. The "
     "associated error type SHOULD be \"auth\"."},
    {gloox::StanzaErrorRemoteServerNotFound,
     "A remote server or service specified as part or all of the JID of the intended recipient does not exist. The "
     "associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorRemoteServerTimeout, "A remote server or service specified as part or all of the JID of the "
                                            "intended recipient (or required to fulfill a "
                                            "request) could not be contacted within a reasonable amount of time. The "
                                            "associated error type SHOULD be \"wait\"."},
    {gloox::StanzaErrorResourceConstraint,
     "The server or recipient lacks the system resources necessary to service the "
     "request. The associated error type SHOULD be \"wait\"."},
    {gloox::StanzaErrorServiceUnavailable, "The server or recipient does not currently provide the requested service. "
                                           "The associated error type SHOULD be \"cancel\"."},
    {gloox::StanzaErrorSubscribtionRequired,
     "The requesting entity is not authorized to access the requested service because a subscription is required. The "
     "associated error type SHOULD be \"auth\"."},
    {gloox::StanzaErrorUndefinedCondition,
     "The error condition is not one of those defined by the other conditions in this list; it SHOULD be used only in "
     "conjunction with an application-specific condition. The associated error type SHOULD be any one of the types."},
    {gloox::StanzaErrorUnexpectedRequest, "The recipient or server understood the request but was not expecting it at "
                                          "this time (e.g., the request was out of "
                                          "order). The associated error type SHOULD be \"wait\"."},
    {gloox::StanzaErrorUnknownSender,
     "The stanza 'from' address specified by a connected client is not valid for the stream (e.g., the stanza does not "
     "include a 'from' address when multiple resources are bound to the stream). The associated error type SHOULD be "
     "\"modify\"."},
    {gloox::StanzaErrorUndefined, "No stanza error occurred."},
    {-1, ""}};
