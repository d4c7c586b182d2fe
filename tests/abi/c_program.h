/* What the C part of these tests offers to the C++ part. */
#ifndef QXTEST_ABI_C_PROGRAM_H
#define QXTEST_ABI_C_PROGRAM_H

#ifdef __cplusplus
extern "C" {
#endif

/* Each returns null when all is as it should be, else what is not. */
const char* CheckRecordSizes(void);
const char* CheckRecordOffsets(void);
const char* CheckTypesAndCodes(void);
const char* CheckHandleZero(void);
const char* CheckPortNameOfHandleZero(void);

#ifdef __cplusplus
}
#endif

#endif
