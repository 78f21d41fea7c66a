#include "ExtractionOffer.h"
#include "PrivateBus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const char* const kService = "application/x-kde-ark-dndextract-service";
const char* const kPath = "application/x-kde-ark-dndextract-path";

class ExtractionOfferTest : public ::testing::Test {
protected:
    ExtractionOfferTest() : offer(MakeOffer()) {}

    ~ExtractionOfferTest() override {
        offer.reset();
        QDBusConnection::disconnectFromBus("ours");
        QDBusConnection::disconnectFromBus("theirs");
    }

    std::unique_ptr<ExtractionOffer> MakeOffer() {
        return ExtractionOffer::Make(ours, [this](const std::string& folder) { folders.push_back(folder); });
    }

    QDBusMessage Call(const QString& folder) {
        return CallForExtraction(theirs, offer->Data(kService), offer->Data(kPath), folder);
    }

    PrivateBus bus;
    QDBusConnection ours = bus.Connect("ours");
    QDBusConnection theirs = bus.Connect("theirs");
    std::vector<std::string> folders;
    std::unique_ptr<ExtractionOffer> offer;
};

TEST_F(ExtractionOfferTest, OffersItsPlaceOnTheBus) {
    EXPECT_EQ(offer->Formats(), (QStringList{kService, kPath}));
    EXPECT_EQ(offer->Data(kService), ours.baseService().toUtf8());
    EXPECT_TRUE(offer->Data(kPath).startsWith('/')) << offer->Data(kPath).toStdString();
}

TEST_F(ExtractionOfferTest, TakesTheFolderAndAnswers) {
    offer->OnDropped();
    EXPECT_EQ(Call("/home/me/zöl #1%20 ?x").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(folders, ElementsAre("/home/me/zöl #1%20 ?x"));
}

TEST_F(ExtractionOfferTest, TakesAFileUrl) {
    offer->OnDropped();
    EXPECT_EQ(Call("file:///home/me/z%C3%B6l%2520").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(folders, ElementsAre("/home/me/zöl%20"));
}

TEST_F(ExtractionOfferTest, CountsTheFirstCallOnly) {
    offer->OnDropped();
    EXPECT_EQ(Call("/home/me").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(Call("/home/other").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(ExtractionOfferTest, RefusesWhatIsNoLocalFolder) {
    offer->OnDropped();
    for (const char* folder : {"", "home/me", "./x", "~/x", "file:home", "file://elsewhere.example/home/me",
                               "smb://server/share", "trash:/"}) {
        EXPECT_EQ(Call(folder).errorName(), "org.freedesktop.DBus.Error.InvalidArgs") << folder;
    }
    EXPECT_THAT(folders, IsEmpty());
    EXPECT_EQ(Call("/home/me").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(ExtractionOfferTest, RefusesCallsBeforeTheDrop) {
    EXPECT_EQ(Call("/home/me").errorName(), "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_THAT(folders, IsEmpty());
    offer->OnDropped();
    EXPECT_EQ(Call("/home/me").type(), QDBusMessage::ReplyMessage);
    EXPECT_THAT(folders, ElementsAre("/home/me"));
}

TEST_F(ExtractionOfferTest, StandsAsLongAsItLives) {
    const QByteArray service = offer->Data(kService);
    const QByteArray path = offer->Data(kPath);
    offer.reset();
    EXPECT_EQ(CallForExtraction(theirs, service, path, "/home/me").errorName(),
              "org.freedesktop.DBus.Error.UnknownObject");
}

TEST_F(ExtractionOfferTest, EachDragHasAPlaceOfItsOwn) {
    const auto next = MakeOffer();
    ASSERT_NE(next, nullptr);
    next->OnDropped();
    EXPECT_NE(next->Data(kPath), offer->Data(kPath));
    EXPECT_EQ(Call("/home/me").errorName(), "org.freedesktop.DBus.Error.AccessDenied");
    EXPECT_THAT(folders, IsEmpty());
}

TEST(ExtractionOfferWithoutBus, IsNotMade) {
    EXPECT_EQ(ExtractionOffer::Make(QDBusConnection("no such bus"), [](const std::string&) {}), nullptr);
}

} // namespace
