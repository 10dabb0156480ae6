// SPDX-License-Identifier: LGPL-2.1-or-later
#include <functional>
#include <set>
#include <utility>

#include "quarner/platform/Platform.h"
#include "tests/support/BurnFixture.h"

namespace quarner::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

using Steps = std::vector<std::string>;

class KeepingBurn : public DRBurn {
public:
    explicit KeepingBurn(Steps& steps) : _steps(steps) {}
    void setProperties(Dictionary properties) override {
        _steps.push_back("setProperties " + std::to_string(properties.size()));
        if (whenSet)
            whenSet();
    }
    void writeLayout(DRLayout layout) override {
        _steps.push_back("writeLayout " + std::to_string(layout.size()));
    }
    void abort() override { _steps.emplace_back("abort"); }

    std::function<void()> whenSet;

private:
    Steps& _steps;
};

class KeepingCenter : public DRNotificationCenter {
public:
    explicit KeepingCenter(Steps& steps) : _steps(steps) {}
    void addObserver(const void* observer, Handler, std::string_view name,
                     const DRObject* object) override {
        _steps.push_back("addObserver " + std::string(name));
        observed = object;
        observers.insert(observer);
    }
    void removeObserver(const void* observer, std::string_view name, const DRObject*) override {
        _steps.push_back("removeObserver " + std::string(name));
        observers.erase(observer);
    }

    const DRObject* observed = nullptr;
    std::multiset<const void*> observers; // one for each registration

private:
    Steps& _steps;
};

/// A recording service that records its calls in order.
class KeepingRecording : public RecordingService {
public:
    KeepingRecording(Steps& steps, std::shared_ptr<RecordingService> other)
        : burn(std::make_shared<KeepingBurn>(steps)),
          center(std::make_shared<KeepingCenter>(steps)), _steps(steps), _other(std::move(other)) {}

    std::vector<std::shared_ptr<DRDevice>> devices() override { return _other->devices(); }
    std::shared_ptr<DRBurn> burnForDevice(std::shared_ptr<DRDevice>) override {
        _steps.emplace_back("burnForDevice");
        return burn;
    }
    std::shared_ptr<DRTrack> trackForAudioFile(const std::string&) override { return nullptr; }
    std::shared_ptr<DRTrack> trackForRootFolder(std::shared_ptr<const DRFolder> folder) override {
        _steps.push_back("trackForRootFolder of " + std::to_string(folder->children().size()) +
                         ", mask " + std::to_string(folder->explicitFilesystemMask()));
        return _other->trackForRootFolder(std::move(folder));
    }
    std::shared_ptr<DRNotificationCenter> currentRunLoopCenter() override { return center; }

    const std::shared_ptr<KeepingBurn> burn;
    const std::shared_ptr<KeepingCenter> center;

private:
    Steps& _steps;
    const std::shared_ptr<RecordingService> _other;
};

/// The steps of a burn: the calls of the delegate and of the services.
template <typename Burner>
class BothBurnOrder : public BurnerTest<Burner> {
protected:
    BothBurnOrder() {
        Platform keeping = *_scripted;
        keeping.recording = recording;
        installPlatform(keeping);
        for (const char* name : {"one", "two"})
            this->burner->_content.append(this->makeItem(name));
    }
    ~BothBurnOrder() override { installPlatform(*_scripted); }

    /// The steps of a burn.
    Steps stepsOfBurn() {
        const QuarnerDevice handle("Writer");
        steps.clear();
        this->delegate.whenCalled = [this](const std::string& call) { steps.push_back(call); };
        this->platform.onCall(ServiceCall::DriveStatus,
                              [this](const std::string&) { steps.emplace_back("status"); });
        this->burner->burnWithDevice(handle, "Disc");
        return std::exchange(steps, {});
    }

    /// The steps up to the query of the disc's free space.
    static Steps preparation() {
        if constexpr (BurnerTest<Burner>::isAudio)
            return {"burnProgressDidStarted", "burnForDevice", "status", "setProperties 4",
                    "status"};
        else
            return {"burnProgressDidStarted",
                    "burnForDevice",
                    "status",
                    "status",
                    "setProperties 4",
                    "trackForRootFolder of 2, mask 2",
                    "status"};
    }
    static Steps preparationAnd(const Steps& rest) {
        Steps all = preparation();
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }

    Steps steps;
    const std::shared_ptr<ScriptedDrive> drive = addWriter(this->platform);

private:
    const std::shared_ptr<const Platform> _scripted = currentPlatform();

protected:
    const std::shared_ptr<KeepingRecording> recording =
        std::make_shared<KeepingRecording>(steps, _scripted->recording);
};

TYPED_TEST_SUITE(BothBurnOrder, Burners, BurnerNames);

TYPED_TEST(BothBurnOrder, ABurnIsPreparedThenWrittenThenObserved) {
    const std::string tracks = this->isAudio ? "2" : "1";
    EXPECT_THAT(this->stepsOfBurn(),
                ElementsAreArray(this->preparationAnd(
                    {"writeLayout " + tracks, "addObserver DRBurnStatusChangedNotification"})));
    EXPECT_EQ(this->recording->center->observed, this->recording->burn.get());
}

TYPED_TEST(BothBurnOrder, ARefusalEndsItBeforeAnythingIsWrittenOrObserved) {
    this->drive->change([](DriveScript& script) { script.disc->blocksFree = 0; });
    EXPECT_THAT(this->stepsOfBurn(),
                ElementsAreArray(this->preparationAnd({"burnProgressDidError(Quarn, 0)"})));
}

TYPED_TEST(BothBurnOrder, TheEndIsToldBeforeTheBurnIsNoLongerObserved) {
    this->stepsOfBurn();
    this->steps.clear();
    this->burner->burnStatusDidChange({DRBurnStatusChangedNotification,
                                       this->recording->burn,
                                       {{DRStatusStateKey, DRStatusStateDone}}});
    EXPECT_THAT(this->steps, ElementsAre("burnProgressDidDone",
                                         "removeObserver DRBurnStatusChangedNotification"));
}

TYPED_TEST(BothBurnOrder, ABurnerThatIsDestroyedInMidBurnIsNoLongerRegistered) {
    this->stepsOfBurn();
    this->steps.clear();
    this->burner.reset();
    EXPECT_THAT(this->steps, ElementsAre("removeObserver DRBurnStatusChangedNotification"));
}

TYPED_TEST(BothBurnOrder, BurnersThatAreDroppedInMidBurnLeaveNoRegistrations) {
    for (int i = 0; i < 3000; ++i) {
        this->burner = std::make_shared<TypeParam>();
        this->burner->_content.append(this->makeItem());
        this->burner->burnWithDevice(QuarnerDevice("Writer"), "Disc");
    }
    EXPECT_EQ(this->recording->center->observers.count(this->burner.get()), 1U);
    this->burner.reset();
    EXPECT_TRUE(this->recording->center->observers.empty()); // each would slow every delivery down
}

using AudioBurnOrder = BothBurnOrder<OpenAudioCDBurner>;

TEST_F(AudioBurnOrder, TheSettingsComeAfterTheTitlesAndBeforeTheEstimate) {
    burner->_estimateTotalLength = 7;
    Value title;
    std::uint64_t estimate = 0;
    recording->burn->whenSet = [&] {
        title = burner->_textBlock->object(DRCDTextTitleKey, 2);
        estimate = burner->_estimateTotalLength;
    };
    stepsOfBurn();
    EXPECT_EQ(title, Value("two"));
    EXPECT_EQ(estimate, 7U) << "of the burn before";
}

} // namespace
} // namespace quarner::testing
