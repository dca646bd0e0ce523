// The binary interface as a program sees it: every type of the exported headers is mentioned by a function
// here, so that abidw finds the layout of the records and the tables of the handlers' virtual functions. The
// library's own debug information does not show them, for no function that it exports takes a handler.
#include <tessel/Tessel.h>

#include <utility>

template <class Type>
TESSEL_API void layoutOf(const Type&)
{
}

template <class Record>
TESSEL_API decltype(fieldsOf(std::declval<const Record&>())) fieldsOfRecord(const Record& record)
{
    return fieldsOf(record);
}

template void layoutOf(const CDeviceManager&);
template void layoutOf(const CHandler&);
template void layoutOf(const CLunHandler&);
template void layoutOf(const CLunGroupHandler&);
template void layoutOf(const CSnapshotHandler&);
template void layoutOf(const CHostHandler&);
template void layoutOf(const CHostGroupHandler&);
template void layoutOf(const CIscsiInitiatorHandler&);
template void layoutOf(const CFCInitiatorHandler&);
template void layoutOf(const CMappingViewHandler&);
template void layoutOf(const CFCPortHandler&);
template void layoutOf(const CFCoEPortHandler&);
template void layoutOf(const CETHPortHandler&);
template void layoutOf(const CDiskAttachHandler&);
template void layoutOf(const CDiskScannerHandler&);

template void layoutOf(const ovra::tessel::HostTransaction&);
template void layoutOf(const ovra::tessel::LocalDisk&);
template void layoutOf(const ovra::tessel::Observer&);
template void layoutOf(const ovra::tessel::OperationEvent&);
template void layoutOf(const ovra::tessel::HostEvent&);

template void layoutOf(const LunQuery&);
template void layoutOf(const LunGroupQuery&);
template void layoutOf(const SnapshotQuery&);
template void layoutOf(const HostGroupQuery&);
template void layoutOf(const MappingViewQuery&);
template void layoutOf(const FCPortQuery&);
template void layoutOf(const FCoEPortQuery&);
template void layoutOf(const ETHPortQuery&);
template void layoutOf(const OvraAPIException&);
template void layoutOf(const OvraAPIExceptionWithErrCode&);
template void layoutOf(const RecordField&);
template void layoutOf(const ovra::tessel::CallLimit&);
template void layoutOf(const ovra::tessel::Cancellation&);
template void layoutOf(const ovra::tessel::Credentials&);
template void layoutOf(const ovra::tessel::Failure&);
template void layoutOf(const ovra::tessel::TransportOptions&);

template void layoutOf(const HANDLERTYPE&);
template void layoutOf(const MOType&);
template void layoutOf(const USERTYPE&);
template void layoutOf(const ovra::tessel::ArrayCode&);

template std::vector<RecordField> fieldsOfRecord(const LunMO&);
template std::vector<RecordField> fieldsOfRecord(const LunGroupMO&);
template std::vector<RecordField> fieldsOfRecord(const SnapshotMO&);
template std::vector<RecordField> fieldsOfRecord(const HostMO&);
template std::vector<RecordField> fieldsOfRecord(const HostGroupMO&);
template std::vector<RecordField> fieldsOfRecord(const IscsiInitiatorMO&);
template std::vector<RecordField> fieldsOfRecord(const FCInitiatorMO&);
template std::vector<RecordField> fieldsOfRecord(const MappingViewMO&);
template std::vector<RecordField> fieldsOfRecord(const FCPortMO&);
template std::vector<RecordField> fieldsOfRecord(const FCoEPortMO&);
template std::vector<RecordField> fieldsOfRecord(const ETHPortMO&);

extern TESSEL_API decltype(&CDeviceManager::getInstance) const makesDeviceManager =
    &CDeviceManager::getInstance;
extern TESSEL_API decltype(&CDeviceManager::releaseInstance) const releasesDeviceManager =
    &CDeviceManager::releaseInstance;
extern TESSEL_API decltype(&ovra::tessel::tidy) const tidies = &ovra::tessel::tidy;
extern TESSEL_API decltype(&ovra::tessel::tidyDisks) const tidiesDisks = &ovra::tessel::tidyDisks;
