// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Usage: open_node NODE. Opens a drive exclusively and prints 0, or the error and ends. Then it
// makes a system call for each line that it reads, and prints its result or the negated error:
// "status" asks for the drive's status, "command" sends TEST UNIT READY.
#include <fcntl.h>
#include <linux/cdrom.h>
#include <scsi/sg.h>
#include <sys/ioctl.h>

#include <array>
#include <cerrno>
#include <iostream>
#include <string>

namespace {

int testUnitReady(int descriptor) {
    std::array<unsigned char, 6> command = {};
    std::array<unsigned char, 32> sense = {};
    sg_io_hdr header = {};
    header.interface_id = 'S';
    header.dxfer_direction = SG_DXFER_NONE;
    header.cmd_len = command.size();
    header.cmdp = command.data();
    header.mx_sb_len = sense.size();
    header.sbp = sense.data();
    return ioctl(descriptor, SG_IO, &header);
}

int resultOf(int value) { return value < 0 ? -errno : value; }

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    const int descriptor = open(words[1], O_RDWR | O_NONBLOCK | O_EXCL | O_CLOEXEC);
    std::cout << (descriptor < 0 ? -errno : 0) << std::endl;
    if (descriptor < 0)
        return 1;
    for (std::string line; std::getline(std::cin, line);)
        std::cout << resultOf(line == "command" ? testUnitReady(descriptor)
                                                : ioctl(descriptor, CDROM_DRIVE_STATUS, 0))
                  << std::endl;
}
