// A file descriptor that closes itself.
#ifndef ZUCOM_TOOLS_DESCRIPTOR_H
#define ZUCOM_TOOLS_DESCRIPTOR_H

#include <unistd.h>

class Descriptor
{
public:
    Descriptor() = default;
    ~Descriptor() { reset(-1); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void reset(int descriptor)
    {
        if (descriptor_ >= 0)
            close(descriptor_);
        descriptor_ = descriptor;
    }
    int get() const { return descriptor_; }

private:
    int descriptor_ = -1;
};

#endif
