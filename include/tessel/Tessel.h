#ifndef TESSEL_TESSEL_H
#define TESSEL_TESSEL_H

/** @file
 * Everything that the SDK exports. */

#include <tessel/Access.h>
#include <tessel/Array.h>
#include <tessel/Audit.h>
#include <tessel/Calls.h>
#include <tessel/DeviceManager.h>
#include <tessel/DiskAttach.h>
#include <tessel/DiskScanner.h>
#include <tessel/ETHPort.h>
#include <tessel/Exception.h>
#include <tessel/FCInitiator.h>
#include <tessel/FCPort.h>
#include <tessel/FCoEPort.h>
#include <tessel/Failure.h>
#include <tessel/Fields.h>
#include <tessel/Host.h>
#include <tessel/HostGroup.h>
#include <tessel/HostTransaction.h>
#include <tessel/IscsiInitiator.h>
#include <tessel/LocalDisk.h>
#include <tessel/Lun.h>
#include <tessel/LunGroup.h>
#include <tessel/MappingView.h>
#include <tessel/Observer.h>
#include <tessel/Snapshot.h>
#include <tessel/Tidy.h>
#include <tessel/Transport.h>
#include <tessel/Version.h>

#endif
