#include "app/Composition.h"

namespace qrx {

std::unique_ptr<QRXAppDelegate> composeApplication() {
    auto delegate = std::make_unique<QRXAppDelegate>();
    delegate->setAppController(std::make_shared<QRXHDFileMatcherController>());
    delegate->appController()->awakeFromNib();
    delegate->applicationDidFinishLaunching();
    return delegate;
}

}  // namespace qrx
