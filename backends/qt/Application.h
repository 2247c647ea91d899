// The Qt application object that fonts and painting need.
#pragma once

#include <string>

namespace zel::qt {

// Makes sure that there is one. Throws CNotSupportedException* when the host has one without graphics.
void EnsureApplication();

// Qt sets the C locale from the environment when its application object is made; numbers that the program
// prints must not change by that.
class KeptLocale {
  public:
    KeptLocale();
    ~KeptLocale();
    KeptLocale(const KeptLocale&) = delete;
    KeptLocale& operator=(const KeptLocale&) = delete;

  private:
    std::string locale_;
};

// Without a display Qt would end the process: chooses to draw offscreen then.
void ChoosePlatform();

}  // namespace zel::qt
