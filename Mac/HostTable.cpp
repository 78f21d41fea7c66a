#include "HostTable.h"

#include "CommonUtils.h"

#include <algorithm>

void HostTable::Heard(const std::string& zHost, const std::string& zName, std::int32_t zPort,
                      TimePoint zNow) {
    const HostRecord latest{zHost, zName, zPort, zNow};
    const auto known = std::ranges::find(mRecords, zHost, &HostRecord::hostValue);
    if (known != mRecords.end()) {
        *known = latest;
        return;
    }
    if (mRecords.size() == kMostHosts) {
        Remove(std::ranges::min_element(mRecords, {}, &HostRecord::dateValue));
    }
    Log("New " + mKind + " host: " + zHost);
    mRecords.push_back(latest);
}

void HostTable::RemoveSilent(TimePoint zNow, std::chrono::duration<double> zAge) {
    for (HostRecord& record : mRecords) {
        record.dateValue = std::min(record.dateValue, zNow);
    }
    const auto isSilent = [&](const HostRecord& record) { return zNow - record.dateValue > zAge; };
    for (auto next = mRecords.begin();
         (next = std::find_if(next, mRecords.end(), isSilent)) != mRecords.end();) {
        next = Remove(next);
    }
}

HostTable::Iterator HostTable::Remove(Iterator zRecord) {
    Log("Discover - Removing " + mKind + " host: " + OneLogLine(zRecord->nameValue));
    return mRecords.erase(zRecord);
}

void HostTable::Log(const std::string& zLine) {
    if (mLogLimit.Admits()) {
        DebugPrint(zLine + '\n');
    }
}
