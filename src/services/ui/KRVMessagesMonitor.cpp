#include "services/ui/KRVMessagesMonitor.h"

constinit std::atomic<bool> KRVMessagesMonitor::messageDisplayed_{false};

void KRVMessagesMonitor::displayed() { messageDisplayed_.exchange(true); }

void KRVMessagesMonitor::dismissed() { messageDisplayed_.exchange(false); }

bool KRVMessagesMonitor::isDisplayed() const { return messageDisplayed_; }
