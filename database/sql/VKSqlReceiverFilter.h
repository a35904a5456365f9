#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "VKDBfilter.h"
#include "VKSqlClause.h"

namespace vk {

/// A statement's pattern with each table written as it is called there: "{receiver}", "{receiver_dept}",
/// "{recv_attribute}", "{carrier}", "{department}"; "{ifnull}" and "{substr}" are the functions that replace NULL and
/// take a part of a text.
std::string NameTables(const SqlDialect& dialect, std::string_view pattern);

/// "(1, 2)"; a list that is empty matches nothing.
std::string SqlIdList(const std::vector<unsigned long>& ids);

/// What a list of receivers is narrowed to, as SetFilter and its kin have said; all of it adds up.
struct SqlReceiverFilter
{
    std::string name;
    std::string pin;
    std::optional<std::string> exactPin;
    std::string coverName;
    unsigned long carrierId = 0;
    int protocolId = 0;
    unsigned long departmentId = 0;
    FltNameLetter firstLetter = FltAnyLetter;
    FltEnabled available = FltEither;
    FltEnabled voice = FltEither;
    FltEnabled advancedMessaging = FltEither;
    std::optional<std::vector<unsigned long>> departmentIds; ///< own or guest; empty: none
    std::optional<std::vector<unsigned long>> favoriteIds;
    std::optional<std::vector<unsigned long>> permittedIds;
    std::optional<std::vector<unsigned long>> receiverIds;
    unsigned long ownerId = 0;
    std::map<unsigned long, std::string> attributes;
    std::optional<std::string> accountName;
    std::string accountDigest;

    bool NeedsCarriers() const { return protocolId != 0; }
    bool NeedsCover() const { return !coverName.empty() && coverName != "*"; }

    /// All conditions.
    SqlClause Clause(const SqlDialect& dialect) const;

    /// What joins the cover receiver to a list, as Recv2.
    static std::string CoverJoin(const SqlDialect& dialect);

private:
    void AddTexts(const SqlDialect& dialect, SqlClause& clause) const;
    void AddStates(const SqlDialect& dialect, SqlClause& clause) const;
    void AddIds(const SqlDialect& dialect, SqlClause& clause) const;
    std::string Attributes(const SqlDialect& dialect) const;
};

} // namespace vk
