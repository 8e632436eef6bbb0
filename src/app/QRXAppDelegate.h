#pragma once

#include <memory>
#include <utility>

#include "app/QRXHDFileMatcherController.h"

namespace qrx {

/// The main window of development builds. There is none here.
class QRXWindow;

/// Holds what start-up makes and connects: the window, which is null, and the controller.
class QRXAppDelegate {
public:
    [[nodiscard]] const std::shared_ptr<QRXWindow>& window() const { return window_; }
    void setWindow(std::shared_ptr<QRXWindow> window) { window_ = std::move(window); }

    [[nodiscard]] const std::shared_ptr<QRXHDFileMatcherController>& appController() const {
        return appController_;
    }
    void setAppController(std::shared_ptr<QRXHDFileMatcherController> appController) {
        appController_ = std::move(appController);
    }

    /// Nothing is left to be done.
    void applicationDidFinishLaunching() {}

private:
    std::shared_ptr<QRXWindow> window_;
    std::shared_ptr<QRXHDFileMatcherController> appController_;
};

}  // namespace qrx
