// The driver of the sensors' bus: the stream device "I2C5:", which any number of openers share.
//
// It has one operation, code 0xA8D42000. The input is a 7-bit address and the bytes to send, below 1024 bytes in all:
//   input only                     write
//   an address alone, and output   read as many bytes as the output holds
//   more, and output               write, then read, as one transfer
// A sensor that does not answer is error 1117; input that is empty or too long 87; any other code or call 50.
// The call log shows open, close, write, read and transfer under the library "I2C5:".
#ifndef QXHOST_INSTRUMENT_I2C_BUS_H
#define QXHOST_INSTRUMENT_I2C_BUS_H

namespace host::instrument {

void LoadI2cDriver();
/// The device is there no more; what is open stays so.
void UnloadI2cDriver();

}  // namespace host::instrument

#endif
