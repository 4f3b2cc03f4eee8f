#pragma once

#include "databaseservice/integers.h"

#include <cstdint>
#include <string>

namespace DatabaseService {

/// One record of the client's usage. Text is UTF-8. Fractions are not stored, see `InsertUserUserLog`.
struct UserLogFields {
    int64 id = 0;
    std::string time;
    std::string action;
    std::string userId;
    std::string devId;
    std::string code;
    std::string info;
    std::string extend;
    std::string traceId;
    double useTime = 0;
    double startTime = 0;
    std::string model;
    std::string romversion;
    std::string appversion;
    std::string reqsize;
    std::string rspsize;
    std::int32_t logversion = 0;
    std::int32_t traceEndFlag = 0;
    std::string curModule;
    std::string actionType;
    std::string nextModule;
    std::string countryCode;
    double residenceTime = 0;
    std::string oprType;
    std::int32_t isMainteranceLog = 0; ///< "maintenance"; the file spells it so, too
};

/// A row of the table `UserLogTable` in `main.dat`.
struct UserLog : UserLogFields { };

/// A row of the table of the same name in `main.dat`: a record of behaviour.
struct UBAUserLog : UserLogFields { };

} // namespace DatabaseService
