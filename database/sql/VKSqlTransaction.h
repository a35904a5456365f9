#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "VKDBexception.h"

namespace vk {

/// Which lock a transaction starts with.
enum class TransactionLock { Shared, Exclusive };

/// The way every transaction of this system is run: no name, a busy store is tried again for two minutes.
constexpr const char* kTransactionName = "";
constexpr bool kTransactionRetry = true;
constexpr int kTransactionAttempts = 4000;
constexpr long kTransactionPauseMs = 30;

/// A transaction on anything that has the four transaction operations. What was not committed is rolled back when the
/// object goes, and a failing rollback never hides what led to it.
template <class Connection> class Transaction
{
public:
    Transaction(Connection& connection, TransactionLock lock) : m_connection(connection)
    {
        m_bOpen = lock == TransactionLock::Shared
                      ? connection.StartTransactionShared(kTransactionName, kTransactionRetry, kTransactionAttempts,
                                                          kTransactionPauseMs)
                      : connection.StartTransactionExclusive(kTransactionName, kTransactionRetry, kTransactionAttempts,
                                                             kTransactionPauseMs);
    }
    ~Transaction()
    {
        if (m_bOpen)
            Rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    /// False when the transaction could not be started.
    bool IsOpen() const { return m_bOpen; }

    /// Ends the transaction; false or an exception mean that nothing of it was stored.
    bool Commit()
    {
        const bool done = m_connection.EndTransactionCommit(kTransactionName, kTransactionRetry, kTransactionAttempts,
                                                            kTransactionPauseMs);
        m_bOpen = !done;
        return done;
    }

private:
    void Rollback() noexcept
    {
        try {
            m_connection.EndTransactionRollback(kTransactionName, kTransactionRetry, kTransactionAttempts,
                                                kTransactionPauseMs);
        } catch (...) { // the handle is fresh again, and with it the transaction is gone
        }
    }

    Connection& m_connection;
    bool m_bOpen = false;
};

/// Start, run, commit: gives back what body gives back. Whatever body throws rolls back and is thrown on; a transaction
/// that cannot be started or committed is an exception too.
template <class Connection, class Body>
auto InTransaction(Connection& connection, TransactionLock lock, Body&& body) -> decltype(body())
{
    Transaction<Connection> transaction(connection, lock);
    const auto require = [&](bool done, const char* what) {
        if (!done)
            throw VKDBexception(DbError::General, __FILE__, __LINE__,
                                std::string("Unable to ") + what + " a transaction on [" + connection.GetPath() +
                                    "]: " + connection.WhyRefused() + ".");
    };
    require(transaction.IsOpen(), "start");
    if constexpr (std::is_void_v<decltype(body())>) {
        std::forward<Body>(body)();
        require(transaction.Commit(), "commit");
    } else {
        auto result = std::forward<Body>(body)();
        require(transaction.Commit(), "commit");
        return result;
    }
}

} // namespace vk
