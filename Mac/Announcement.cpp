#include "Announcement.h"

#include "CommonUtils_OSX.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr const char* kSeparators = ":;";
constexpr const char* kWhiteSpace = " \t\n\v\f\r";

class FieldScanner {
public:
    explicit FieldScanner(const std::string& zText) : mrText(zText) {}

    bool IsAtEnd() {
        Skip(kWhiteSpace);
        return mPosition == mrText.size();
    }

    /// Takes what stands before the next separator; false when that is nothing.
    bool ScanText(std::string& zrField) {
        Skip(kWhiteSpace);
        const std::size_t end = std::min(mrText.find_first_of(kSeparators, mPosition), mrText.size());
        if (end == mPosition) {
            return false;
        }
        zrField.assign(mrText, mPosition, end - mPosition);
        mPosition = end;
        SkipSeparators();
        return true;
    }

    bool ScanNumber(std::int32_t& zrField) {
        if (!OSX10_x::scanInteger(zrField, mrText, mPosition)) {
            return false;
        }
        SkipSeparators();
        return true;
    }

    bool HasSeparatorLeft() const {
        return mrText.find_first_of(kSeparators, mPosition) != std::string::npos;
    }

private:
    void SkipSeparators() {
        Skip(kWhiteSpace);
        Skip(kSeparators);
    }

    void Skip(const char* zCharacters) {
        mPosition = std::min(mrText.find_first_not_of(zCharacters, mPosition), mrText.size());
    }

    const std::string& mrText;
    std::size_t mPosition = 0;
};

} // namespace

std::string FormatAnnouncement(const Announcement& zAnnouncement) {
    return zAnnouncement.name + ':' + zAnnouncement.optionName + ':' + std::to_string(zAnnouncement.port) +
           ';';
}

bool ParseAnnouncements(const std::string& zText, const std::function<void(const Announcement&)>& zTake) {
    FieldScanner scanner(zText);
    Announcement next;
    while (!scanner.IsAtEnd()) {
        if (!scanner.ScanText(next.name) || !scanner.ScanText(next.optionName) ||
            !scanner.ScanNumber(next.port)) {
            // Where a separator stands in place of a field, or follows what should be a number, nobody can
            // tell where the next announcement begins.
            return !scanner.HasSeparatorLeft();
        }
        zTake(next);
    }
    return true;
}
