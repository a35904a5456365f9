#pragma once

#include "VKLogInterface.h"
#include "VKMessageFile.h"
#include "VKMessengerInstConfBasic.h"
#include "VKMessengerReportsMngrInterface.h"
#include "VKMsgFileQueue.h"

#include <map>
#include <string>

/// The base of every protocol driver: what a host drives after it has loaded a driver's library.
///
/// Order of calls: GetDriverInstance, assignment of the three base fields, Configure, Setup, then any number of
/// SendAMessage, Send2WayRespQuery, PeriodicEvent, ResetDevice and ProcessSignal, then Cleanup and
/// ReleaseDriverInstance. All of them come from one thread of the host. Nothing here throws.
///
/// A driver returns a file to the host through the three non-virtual operations, which may run on any thread; a file
/// must not be in the hands of two threads at once. Fields and virtual operations stand in the order that hosts are
/// built for.
class VKProtocolDriverInterface
{
public:
    using ReportsStatus = VKMessengerReportsMngrInterface::ReportsStatus;

    VKProtocolDriverInterface() = default;
    virtual ~VKProtocolDriverInterface() = default;
    VKProtocolDriverInterface(const VKProtocolDriverInterface&) = delete;
    VKProtocolDriverInterface& operator=(const VKProtocolDriverInterface&) = delete;

    virtual const char* GetName() = 0;
    virtual const char* GetVersion() = 0;
    virtual const char* GetProtocolName() = 0;

    /// The carrier that the driver serves, "*" for any of its protocol.
    virtual const char* GetCarrierName() = 0;

    /// Gets the driver going. A driver may ignore the map.
    virtual bool Configure(std::map<std::string, std::string>&) { return true; }

    /// Hands over the settings of the messenger process; the driver copies them.
    virtual bool Setup(VKMessengerInstConfBasic*) { return true; }

    virtual bool PeriodicEvent() { return true; }

    /// Drops what was set up from settings, so that changed settings take effect.
    virtual bool ResetDevice() { return true; }

    /// Applies to the file what its receiver has said since the last query, pushing it back once for each answer.
    /// \param status receives the status that the host records.
    virtual bool Send2WayRespQuery(VKMessageFile*, ReportsStatus&) { return true; }

    /// Takes one message file for delivery, without waiting for the receiver.
    /// \param status receives the status that the host records.
    /// \return Whether the file is in good hands: sent or waiting. Otherwise its failure reason says why.
    virtual bool SendAMessage(VKMessageFile* file, ReportsStatus& status) = 0;

    /// Ends everything that Configure and the sends began.
    virtual bool Cleanup() { return true; }

    virtual bool ProcessSignal() { return true; }

    /// Returns a file to the host with a status, RS_UNCHANGED to leave the last one and clear its time, and a text.
    /// \param keepOpen whether further answers may follow.
    /// \return False, with nothing done, when the host gave no queue or the file is null.
    bool PushBackMsgFile(VKMessageFile* file, ReportsStatus status, bool keepOpen, const std::string& text);

    /// Tells the host's reports manager of a status, RS_UNCHANGED to leave the file's own as it is.
    /// \return What the reports manager answered; false when there is none.
    bool WriteMessageReport(VKMessageFile* file, ReportsStatus status, const std::string& text);

    /// Returns a file that the host is to delete; nothing else of it changes.
    /// \return False, with nothing done, when the host gave no queue or the file is null.
    bool PushBackMsgFileForDeletion(VKMessageFile* file);

    // Assigned by the host before Configure; the host owns all three, and each may be null.
    VKLogInterface* m_pobjLogger = nullptr;
    VKMessengerReportsMngrInterface* m_pobjReportsMngr = nullptr;
    VKMsgFileQueue* m_pobjMsgFileQueue = nullptr;

private:
    void Append(VKMessageFile* file);
};
