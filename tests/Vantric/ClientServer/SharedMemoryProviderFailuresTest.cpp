#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "Vantric/ClientServer/SharedMemoryProvider.h"
#include "tests/support/Allocations.h"
#include "tests/support/Privileges.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/RawSegment.h"
#include "tests/support/Roles.h"
#include "tests/support/SmallFileSystem.h"

namespace vantric_test {
namespace {

using com_qel::Orvane::Vantric::ClientServer::SharedMemoryProvider;

constexpr const char* name = "TestSegment";
constexpr uint32_t smallSize = 61;
constexpr uint32_t pageSize = 4096;
constexpr int directoryInTheWay = EINVAL;  // as the C library reports EISDIR

// The errors that the next calls of fallocate() fail with, the last one first.
std::vector<int>& fallocateErrors() {
    static std::vector<int> errors;
    return errors;
}

std::string openError(int error) {
    return "Failed to open shared mem file, error: " + std::generic_category().message(error);
}

std::string mapError(int error) {
    return "Failed to map to shared memory, error: " + std::generic_category().message(error);
}

// The text of the runtime error that mapping ends in; empty when it succeeds.
std::string failureOf(SharedMemoryProvider& provider, uint32_t payloadSize,
                      const std::string& segment = name) {
    try {
        provider.map(payloadSize, segment);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

std::string failureOf(uint32_t payloadSize) {
    SharedMemoryProvider provider;
    return failureOf(provider, payloadSize);
}

// Maps the segment and prints the error's text. arguments: none
const RoleRegistration mapper("mapper", [](const Arguments&) {
    std::fputs(failureOf(smallSize).c_str(), stdout);
    return 0;
});

// Reserves address space until no mapping of `smallest` bytes finds a place, but many smaller ones
// do.
std::vector<std::pair<void*, std::size_t>> reserveAddressSpace(std::size_t smallest) {
    constexpr std::size_t largest = ~(~std::size_t{0} >> 1) >> 16 * (sizeof(void*) / 8);
    std::vector<std::pair<void*, std::size_t>> reserved;
    for (std::size_t length = largest; length >= smallest; length /= 2) {
        while (true) {
            void* address = mmap(nullptr, length, PROT_NONE,
                                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
            if (address == MAP_FAILED) {
                break;
            }
            reserved.emplace_back(address, length);
        }
    }
    return reserved;
}

// Maps with too full an address space, then with a sufficient one. Prints the error's text; the
// exit code names what was wrong afterwards.
const RoleRegistration cramped("crampedMapper", [](const Arguments&) {
    constexpr uint32_t tooMuch = 32U << 20;
    SharedMemoryProvider provider;
    const std::size_t descriptors = openDescriptorCount();
    const auto reserved = reserveAddressSpace(tooMuch);
    const std::string failure = failureOf(provider, tooMuch);
    for (const auto& [address, length] : reserved) {
        munmap(address, length);
    }
    std::fputs(failure.c_str(), stdout);
    if (openDescriptorCount() != descriptors) {
        return 2;
    }
    if (segmentLength(name) != tooMuch + 4 || RawSegment(name).word(0) != 0) {
        return 3;
    }
    if (!failureOf(provider, smallSize).empty() || RawSegment(name).word(0) != 1) {
        return 4;
    }
    return 0;
});

void expectFailureOf(const Command& role, const std::string& failure) {
    const Result result = run(role);
    EXPECT_EQ(result.status.raw, 0) << result.errors;
    EXPECT_EQ(result.output, failure);
}

TEST(SharedMemoryProvider, aDirectoryInTheWayIsAnOpenFailure) {
    ASSERT_EQ(mkdir(segmentPath(name).c_str(), 0777), 0);
    EXPECT_EQ(failureOf(smallSize), openError(directoryInTheWay));
}

TEST(SharedMemoryProvider, anObjectOfAnotherUserIsAnOpenFailure) {
    const RawSegment segment(name, smallSize + 4);
    ASSERT_EQ(chmod(segmentPath(name).c_str(), 0), 0);
    Command command = roleCommand("mapper");
    command.preparations = {obeyFileModes};
    expectFailureOf(command, openError(EACCES));
    EXPECT_EQ(segment.word(0), 0U);
}

TEST(SharedMemoryProvider, aLackOfAddressSpaceIsAMapFailureAfterWhichTheProviderStillWorks) {
    expectFailureOf(roleCommand("crampedMapper"), mapError(ENOMEM));
}

TEST(SharedMemoryProvider, aFullFileSystemIsAMapFailureAndNoSignal) {
    const SmallFileSystem tiny("/dev/shm", "4k");
    RawSegment filler("filler", pageSize);
    filler.writeWord(0, 1);
    expectFailureOf(roleCommand("mapper"), mapError(ENOSPC));
    EXPECT_EQ(segmentLength(name), smallSize + 4);
}

TEST(SharedMemoryProvider, aFullFileSystemLeavesTheProviderUsableAndTheCountUntouched) {
    const SmallFileSystem tiny("/dev/shm", "12k");
    auto filler = std::make_unique<RawSegment>("filler", std::size_t{3} * pageSize);
    filler->write(0, Bytes(std::size_t{3} * pageSize, 1));
    const std::size_t descriptors = openDescriptorCount();
    SharedMemoryProvider provider;
    ASSERT_EQ(failureOf(provider, smallSize), mapError(ENOSPC));
    EXPECT_EQ(openDescriptorCount(), descriptors);
    EXPECT_FALSE(isMapped(segmentInode(name)));

    filler.reset();
    std::filesystem::remove(segmentPath("filler"));
    EXPECT_EQ(RawSegment(name).word(0), 0U);
    EXPECT_EQ(failureOf(provider, smallSize), "");
    EXPECT_EQ(RawSegment(name).word(0), 1U);
}

TEST(SharedMemoryProvider, onlyALackOfRoomForTheBlocksIsAMapFailure) {
    for (const int error : {ENOSPC, EDQUOT, EFBIG, ENOMEM}) {
        fallocateErrors() = {error};
        EXPECT_EQ(failureOf(smallSize), mapError(error));
    }
    for (const int error : {EPERM, EINVAL, ENODEV, EOPNOTSUPP, ENOSYS, EACCES}) {
        fallocateErrors() = {error};
        EXPECT_EQ(failureOf(smallSize), "");
        EXPECT_TRUE(fallocateErrors().empty());
    }
}

TEST(SharedMemoryProvider, anInterruptedReservationIsRepeated) {
    fallocateErrors() = {ENOSPC, EINTR, EINTR};
    EXPECT_EQ(failureOf(smallSize), mapError(ENOSPC));
}

TEST(SharedMemoryProvider, aLengthThatNoObjectCanHaveIsAMapFailure) {
    constexpr auto longest =
        static_cast<uint32_t>(std::min<uint64_t>(UINT32_MAX, std::numeric_limits<off_t>::max()));
    SharedMemoryProvider provider;
    for (const uint32_t tooLarge : {longest - 3, longest, UINT32_MAX}) {
        EXPECT_EQ(failureOf(provider, tooLarge), mapError(EOVERFLOW));
    }
    EXPECT_FALSE(segmentExists(name));
    EXPECT_EQ(failureOf(provider, smallSize), "");
}

TEST(SharedMemoryProvider, aFailureDoesNotTouchWhatIsMappedAlready) {
    SharedMemoryProvider provider;
    provider.map(smallSize, name);
    ASSERT_EQ(mkdir(segmentPath("OtherSegment").c_str(), 0777), 0);
    ASSERT_EQ(failureOf(provider, smallSize, "OtherSegment"), openError(directoryInTheWay));
    EXPECT_EQ(RawSegment(name).word(0), 1U);
    EXPECT_TRUE(isMapped(segmentInode(name)));
}

TEST(SharedMemoryProvider, runningOutOfMemoryAnywhereLeavesTheProviderAsItWas) {
    SharedMemoryProvider provider;
    provider.map(smallSize, "EarlierSegment");
    const std::string segment = "SegmentWithANameTooLongForTheInlineBufferOfAString";
    const std::size_t descriptors = openDescriptorCount();
    const auto mapFailingAt = [&](std::size_t allocation) {
        const Allocations failing(allocation);
        try {
            provider.map(smallSize, segment);
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    };
    std::size_t allocation = 1;
    while (mapFailingAt(allocation)) {
        EXPECT_EQ(RawSegment(segment).word(0), 0U) << allocation;
        EXPECT_FALSE(isMapped(segmentInode(segment))) << allocation;
        EXPECT_EQ(openDescriptorCount(), descriptors) << allocation;
        ++allocation;
    }
    EXPECT_GT(allocation, 3U);
    EXPECT_EQ(RawSegment(segment).word(0), 1U);
    EXPECT_EQ(RawSegment("EarlierSegment").word(0), 1U);
}

}  // namespace
}  // namespace vantric_test

// Stands before the system's function.
extern "C" int fallocate(int descriptor, int mode, off_t offset, off_t length) {
    std::vector<int>& errors = vantric_test::fallocateErrors();
    if (!errors.empty()) {
        errno = errors.back();
        errors.pop_back();
        return -1;
    }
    // With 64-bit offsets on a 32-bit machine the header gives this function another name.
    constexpr bool isWide = sizeof(off_t) > sizeof(long);
    void* address = dlsym(RTLD_NEXT, isWide ? "fallocate64" : "fallocate");
    int (*function)(int, int, off_t, off_t) = nullptr;
    std::memcpy(&function, &address, sizeof(function));
    return function(descriptor, mode, offset, length);
}
