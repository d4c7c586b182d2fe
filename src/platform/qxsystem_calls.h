// The calls of the instrument's system library (QxSystem.dll), which is imported by ordinal only: one row a call.
//
// QX_SYSTEM_CALL(ordinal, role, parameters) is defined by whoever includes this file, once for each use of the table:
// the declarations in qxsystem.h, the rows of the import library's .def. Every call returns a signed 32-bit result; 0
// is success where it tells anything. Angles are radians, lengths metres.

#ifndef QX_SYSTEM_CALL
#error "define QX_SYSTEM_CALL(ordinal, role, parameters) first"
#endif

// Parameters by their index in a group of their type; the EDM code is 0 to 5.
QX_SYSTEM_CALL(1, GetIntegerParameter, (std::int32_t index, std::int32_t* value))
QX_SYSTEM_CALL(2, SetIntegerParameter, (std::int32_t index, std::int32_t value))
QX_SYSTEM_CALL(3, GetDoubleParameter, (std::int32_t index, double* value))
QX_SYSTEM_CALL(4, SetDoubleParameter, (std::int32_t index, double value))
QX_SYSTEM_CALL(46, GetEdmCode, (std::int32_t index, std::int32_t* code))
QX_SYSTEM_CALL(47, SetEdmCode, (std::int32_t index, std::int32_t code))

// Items of the non-volatile store. The identifier tells the size: bits 8 to 15 the element type (0, 1, 2: one byte; 3,
// 4, 8: two; 5, 6: four; 7: eight), bits 0 to 7 the element count, bits 16 to 23 the item's number.
QX_SYSTEM_CALL(61, ReadStoreItem, (std::uint32_t item, void* value))
QX_SYSTEM_CALL(62, WriteStoreItem, (std::uint32_t item, const void* value))

// Called once for each service, when its devices have been opened.
QX_SYSTEM_CALL(12, AnnounceService, ())

// Measuring. Mode 1, 2 or 3; target 0 or 1.
QX_SYSTEM_CALL(5, StartDistance, (std::uint32_t mode, std::uint32_t target))
QX_SYSTEM_CALL(6, StopDistance, ())
QX_SYSTEM_CALL(8, GetAngles, (QxAngleRecord * record, std::int32_t flag))
QX_SYSTEM_CALL(9, GetMeasurement, (QxMeasurementRecord * record))
QX_SYSTEM_CALL(10, GetTilt, (QxPair * tilt))
QX_SYSTEM_CALL(11, GetMeasurementStatus, (QxMeasurementStatus * status))
QX_SYSTEM_CALL(15, SetHorizontalAngle, (double angle))
QX_SYSTEM_CALL(16, SetSignedHorizontalAngle, (double angle))
QX_SYSTEM_CALL(60, GetReferenceAngles, (QxPair * angles))

// Focusing. The four that start a job answer 0 when it has been started.
QX_SYSTEM_CALL(30, GetFocusDistance, (void* buffer))
QX_SYSTEM_CALL(31, FocusToDistance, (double distance))
QX_SYSTEM_CALL(32, StartAutofocus, (std::int32_t on))
QX_SYSTEM_CALL(64, StopFocus, ())
QX_SYSTEM_CALL(65, MoveFocusTo, (std::int32_t position))
QX_SYSTEM_CALL(66, MoveFocusBy, (std::int32_t steps))

// Switches: 0 RTL, 1 LGD, 2 LPT, 3 LPL.
QX_SYSTEM_CALL(43, SetSwitch, (std::int32_t number, std::int32_t value))
QX_SYSTEM_CALL(44, GetSwitch, (std::int32_t number, std::int32_t* value))

// Hands back the application's window that receives the instrument's events, and the number of the message that carries
// them (wParam = the event mask). Leaves both as they are when there is no such window.
QX_SYSTEM_CALL(63, GetEventWindow, (HWND * window, UINT* message))
