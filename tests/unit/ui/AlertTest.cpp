#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "UiFixture.h"
#include "services/ui/KRVAlertHandler.h"

namespace {

using Platform::AlertActionStyle;
using Platform::ContainerKind;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using TestSupport::AlertListener;
using TestSupport::FakeViewController;
using TestSupport::LogLevel;

constexpr const char* kBusy = "Failed to show alert, another message is displayed at this time";

class Alert : public TestSupport::UiFixture {
 protected:
  std::shared_ptr<AlertListener> Listener(const std::string& name) {
    return std::make_shared<AlertListener>(calls, name);
  }

  // Asks for an alert and lets the main queue get to it.
  void Show(const std::shared_ptr<AlertListener>& listener, const std::string& positive = "Yes",
            const std::string& negative = "No") {
    service->ShowAlert("Title", "Message", positive, negative, listener);
    host.mainQueue->RunAll();
  }

  // The newest alert that was made.
  TestSupport::FakeAlertController& Made() { return *host.ui->alertControllers.back(); }
  FakeViewController& Root() { return *host.application->window->RootDouble(); }
};

TEST_F(Alert, IsPresentedAnimatedOnTheKeyWindowsController) {
  Show(Listener("a"));
  ASSERT_THAT(Root().presentations, SizeIs(1));
  EXPECT_EQ(Root().presentations[0].alert, host.ui->alertControllers.back());
  EXPECT_TRUE(Root().presentations[0].animated);
  EXPECT_EQ(Made().title, "Title");
  EXPECT_EQ(Made().message, "Message");
  EXPECT_THAT(calls, ElementsAre("a show*"));
}

TEST_F(Alert, AppearsOnlyWhenTheMainQueueGetsToIt) {
  service->ShowAlert("Title", "Message", "Yes", "No", Listener("a"));
  EXPECT_THAT(host.ui->alertControllers, IsEmpty());
  EXPECT_FALSE(service->IsMessageDisplayed());
  host.mainQueue->RunAll();
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(Alert, HasADefaultAndACancelButton) {
  Show(Listener("a"));
  ASSERT_THAT(Made().actions, SizeIs(2));
  EXPECT_EQ(Made().actions[0].title, "Yes");
  EXPECT_EQ(Made().actions[0].style, AlertActionStyle::Default);
  EXPECT_EQ(Made().actions[1].title, "No");
  EXPECT_EQ(Made().actions[1].style, AlertActionStyle::Cancel);
}

TEST_F(Alert, IsGoneEvenWhenItsListenerThrows) {
  const auto listener = Listener("a");
  listener->throws = true;
  Show(listener);
  log.ExpectLine(LogLevel::Error, "KRVAlertHandler",
                 "An alert's listener failed: std.exception: spilt");
  Made().Choose("Yes");
  EXPECT_THAT(calls, ElementsAre("a show*", "a positive*", "a dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, HasASingleButtonWithoutANegativeText) {
  Show(Listener("a"), "Yes", "");
  ASSERT_THAT(Made().actions, SizeIs(1));
  EXPECT_EQ(Made().actions[0].title, "Yes");
}

TEST_F(Alert, HasNoButtonWithoutTextsAndGoesWhenThePlatformTakesItAway) {
  Show(Listener("a"), "", "");
  EXPECT_THAT(Made().actions, IsEmpty());
  EXPECT_TRUE(service->IsMessageDisplayed());
  Made().DismissWithoutAction();
  EXPECT_THAT(calls, ElementsAre("a show*", "a dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, TellsThePositiveResponseAndThenTheDismissal) {
  Show(Listener("a"));
  Made().Choose("Yes");
  EXPECT_THAT(calls, ElementsAre("a show*", "a positive*", "a dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, TellsTheNegativeResponseAndThenTheDismissal) {
  Show(Listener("a"));
  Made().Choose("No");
  EXPECT_THAT(calls, ElementsAre("a show*", "a negative*", "a dismiss"));
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, RefusesASecondOneWhileOneIsShown) {
  Show(Listener("a"));
  Show(Listener("b"));
  log.ExpectLine(LogLevel::Debug, "AlertMessage", kBusy);
  EXPECT_THAT(host.ui->alertControllers, SizeIs(1));
  host.ui->alertControllers[0]->Choose("Yes");
  EXPECT_THAT(calls, ElementsAre("a show*", "a positive*", "a dismiss"));
}

TEST_F(Alert, RefusesTheSecondOfTwoThatAreAskedForAtOnce) {
  service->ShowAlert("Title", "Message", "Yes", "No", Listener("a"));
  service->ShowAlert("Title", "Message", "Yes", "No", Listener("b"));
  host.mainQueue->RunAll();
  log.ExpectLine(LogLevel::Debug, "AlertMessage", kBusy);
  EXPECT_THAT(calls, ElementsAre("a show*"));
}

TEST_F(Alert, IsRefusedWhateverServiceShowsTheOther) {
  Velmora::CreateNativeUiService()->ShowAlert("Title", "", "Yes", "", Listener("a"));
  host.mainQueue->RunAll();
  Show(Listener("b"));
  log.ExpectLine(LogLevel::Debug, "AlertMessage", kBusy);
  EXPECT_THAT(calls, ElementsAre("a show*"));
}

TEST_F(Alert, MayFollowOneThatWasDismissed) {
  Show(Listener("a"));
  Made().Choose("No");
  calls.clear();
  Show(Listener("b"));
  Made().Choose("Yes");
  EXPECT_THAT(calls, ElementsAre("b show*", "b positive*", "b dismiss"));
}

TEST_F(Alert, NeedsNoListener) {
  Show(nullptr);
  EXPECT_TRUE(service->IsMessageDisplayed());
  Made().Choose("Yes");
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, KeepsItsListenerUntilTheNextRequest) {
  auto listener = Listener("a");
  const std::weak_ptr<AlertListener> watch = listener;
  Show(std::exchange(listener, nullptr));
  host.ui->alertControllers[0]->Choose("Yes");
  EXPECT_FALSE(watch.expired());
  Show(nullptr);
  EXPECT_TRUE(watch.expired());
}

TEST_F(Alert, IsNotShownOverAViewThatIsNotLoaded) {
  Root().isViewLoaded = false;
  Show(Listener("a"));
  EXPECT_THAT(Root().presentations, IsEmpty());
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, IsNotShownWithoutAWindowOrAController) {
  host.application->window->root = nullptr;
  Show(Listener("a"));
  host.application->HaveNoWindow();
  Show(Listener("b"));
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, IsPresentedOnTheFirstWindowWhenNoneIsKey) {
  host.application->keyWindow = nullptr;
  host.application->windows.push_back(std::make_shared<TestSupport::FakeWindow>());
  Show(Listener("a"));
  EXPECT_THAT(Root().presentations, SizeIs(1));
}

TEST_F(Alert, LogsOneLineWhenTheDeviceFails) {
  Root().failsToPresent = true;
  Show(Listener("a"));
  log.ExpectLine(LogLevel::Error, "KRVAlertHandler", "Unable to show alert");
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_FALSE(service->IsMessageDisplayed());
}

TEST_F(Alert, TakesTextsOfAnySizeAndBytes) {
  const std::string huge(10'000'000, 'x');
  service->ShowAlert(huge, "\xFF", std::string("a\0b", 3), "", nullptr);
  host.mainQueue->RunAll();
  EXPECT_EQ(Made().title, huge);
  EXPECT_EQ(Made().message, std::nullopt);
  ASSERT_THAT(Made().actions, SizeIs(1));
  EXPECT_EQ(Made().actions[0].title, "a");
}

class LegacyAlert : public Alert {
 protected:
  LegacyAlert() { host.ui->supportsAlertController = false; }

  TestSupport::FakeAlertView& View() { return *host.ui->alertViews.back(); }
};

TEST_F(LegacyAlert, HasTheNegativeTextAsItsCancelButton) {
  Show(Listener("a"));
  EXPECT_TRUE(View().isShown);
  EXPECT_EQ(View().settings.title, "Title");
  EXPECT_EQ(View().settings.message, "Message");
  EXPECT_EQ(View().settings.cancelButtonTitle, "No");
  EXPECT_EQ(View().settings.otherButtonTitle, "Yes");
  EXPECT_THAT(calls, ElementsAre("a show*"));
}

TEST_F(LegacyAlert, TellsWhichButtonWasTapped) {
  Show(Listener("a"));
  View().settings.clickedButtonAtIndex(1);
  EXPECT_THAT(TakeCalls(), ElementsAre("a show*", "a positive*", "a dismiss"));
  Show(Listener("b"));
  View().settings.clickedButtonAtIndex(0);
  EXPECT_THAT(TakeCalls(), ElementsAre("b show*", "b negative*", "b dismiss"));
}

TEST_F(LegacyAlert, IgnoresOtherButtons) {
  Show(Listener("a"));
  View().settings.clickedButtonAtIndex(2);
  View().settings.clickedButtonAtIndex(-1);
  EXPECT_THAT(calls, ElementsAre("a show*"));
  EXPECT_TRUE(service->IsMessageDisplayed());
}

TEST_F(LegacyAlert, LogsOneLineWhenTheDeviceFails) {
  host.ui->fails = true;
  Show(Listener("a"));
  log.ExpectLine(LogLevel::Error, "KRVAlertHandler", "Unable to show UIAlertView");
  EXPECT_FALSE(service->IsMessageDisplayed());
}

// Every test builds what the user sees and asks where an alert would go.
class BestViewController : public testing::Test {
 protected:
  using Controller = std::shared_ptr<FakeViewController>;

  static Controller Plain() { return std::make_shared<FakeViewController>(); }
  static Controller Container(ContainerKind kind, const std::vector<Controller>& controllers) {
    auto container = Plain();
    container->kind = kind;
    container->controllers.assign(controllers.begin(), controllers.end());
    return container;
  }
  static std::shared_ptr<Platform::ViewController> Find(const Controller& controller) {
    return KRVAlertHandler::findBestViewController(controller);
  }

  const Controller first_ = Plain();
  const Controller second_ = Plain();
};

TEST_F(BestViewController, IsAPlainOneItself) { EXPECT_EQ(Find(first_), first_); }

TEST_F(BestViewController, IsNoneForNone) { EXPECT_EQ(Find(nullptr), nullptr); }

TEST_F(BestViewController, IsThePresentedOneBeforeAnyContained) {
  const auto split = Container(ContainerKind::Split, {first_});
  split->presented = second_;
  EXPECT_EQ(Find(split), second_);
}

TEST_F(BestViewController, IsTheLastOfASplitView) {
  EXPECT_EQ(Find(Container(ContainerKind::Split, {first_, second_})), second_);
}

TEST_F(BestViewController, IsTheTopOfANavigation) {
  const auto navigation = Container(ContainerKind::Navigation, {first_, second_});
  navigation->top = second_;
  EXPECT_EQ(Find(navigation), second_);
}

TEST_F(BestViewController, IsTheSelectedOfATabBar) {
  const auto tabs = Container(ContainerKind::TabBar, {first_, second_});
  tabs->selected = first_;
  EXPECT_EQ(Find(tabs), first_);
  tabs->selected = nullptr;
  EXPECT_EQ(Find(tabs), nullptr);
}

TEST_F(BestViewController, IsTheFirstOfAPageView) {
  EXPECT_EQ(Find(Container(ContainerKind::Page, {first_, second_})), first_);
}

TEST_F(BestViewController, IsAnEmptyContainerItself) {
  for (const auto kind : {ContainerKind::Split, ContainerKind::Navigation, ContainerKind::TabBar,
                          ContainerKind::Page}) {
    const auto container = Container(kind, {});
    EXPECT_EQ(Find(container), container);
  }
}

TEST_F(BestViewController, IsWhatTheTopOfANavigationPresents) {
  const auto navigation = Container(ContainerKind::Navigation, {first_});
  navigation->top = first_;
  first_->presented = second_;
  EXPECT_EQ(Find(navigation), second_);
}

TEST_F(BestViewController, IsFoundThroughAThousandContainersAndARing) {
  Controller outer = first_;
  for (int i = 0; i < 999; ++i) outer = Container(ContainerKind::Page, {outer});
  EXPECT_EQ(Find(outer), first_);
  first_->presented = outer;
  EXPECT_NE(Find(outer), nullptr);
  first_->presented = nullptr;
}

}  // namespace
