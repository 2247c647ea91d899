// A flag that is on for the life of an object.
#pragma once

namespace zel {

class Flagged {
  public:
    explicit Flagged(bool& flag) : flag_(flag) { flag = true; }
    ~Flagged() { flag_ = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

  private:
    bool& flag_;
};

}  // namespace zel
