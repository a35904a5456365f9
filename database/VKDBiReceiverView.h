#pragma once

#include <memory>

#include "VKDBiReceiver.h"

/// The receivers for those that only list them. Throws VKDBexception. One object serves one thread.
class VKDBiReceiverView : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend; the caller owns it. Throws VKDBexception.
    static VKDBiReceiverView* CreateInstance(VKDBsystem* system);

    /// Takes the receivers over.
    explicit VKDBiReceiverView(std::unique_ptr<VKDBiReceiver> receivers) : m_pReceivers(std::move(receivers)) {}

    /// By the filter, ordered by name. Empties the list first.
    bool Get(VK_RECEIVER_VIEW_LIST* list) { return m_pReceivers->Get(list); }
    /// As VKDBiReceiver::SetFilter.
    template <class... Arguments> void SetFilter(Arguments&&... arguments)
    {
        m_pReceivers->SetFilter(std::forward<Arguments>(arguments)...);
    }
    void ClearFilter() override { m_pReceivers->ClearFilter(); }
    void ClearSort() override { m_pReceivers->ClearSort(); }

private:
    std::unique_ptr<VKDBiReceiver> m_pReceivers;
};
