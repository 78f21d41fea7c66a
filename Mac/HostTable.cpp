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
    DebugPrint("New " + mKind + " host: " + zHost + '\n');
    mRecords.push_back(latest);
}

void HostTable::RemoveSilent(TimePoint zNow, std::chrono::duration<double> zAge) {
    const auto isSilent = [&](const HostRecord& record) { return zNow - record.dateValue > zAge; };
    for (auto next = mRecords.begin();
         (next = std::find_if(next, mRecords.end(), isSilent)) != mRecords.end();) {
        next = Remove(next);
    }
}

HostTable::Iterator HostTable::Remove(Iterator zRecord) {
    DebugPrint("Discover - Removing " + mKind + " host: " + OneLogLine(zRecord->nameValue) + '\n');
    return mRecords.erase(zRecord);
}
