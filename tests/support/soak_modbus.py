"""A Modbus server on pymodbus for the driver soak: "RECORD HOST PORT".

Holding registers 0 and 1 are its clock, a number of 32 bits; 10 and 11 can be written.
"""
import asyncio
import sys

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server.async_io import ModbusTcpServer

from soak_record import Record, clock


class Registers(ModbusSequentialDataBlock):
    def __init__(self, record):
        super().__init__(0, [0] * 20)
        self._record = record

    def getValues(self, address, count=1):
        now = clock()
        held = self._record.held
        registers = [now >> 16, now & 0xFFFF] + [held.get(str(number), 0) for number in range(2, 20)]
        return registers[address:address + count]

    def setValues(self, address, values):
        for number, value in enumerate(values, address):
            self._record.write(str(number), value)


async def main():
    registers = Registers(Record(sys.argv[1]))
    slave = ModbusSlaveContext(hr=registers, zero_mode=True)
    server = ModbusTcpServer(ModbusServerContext(slaves={1: slave}, single=False),
                             address=(sys.argv[2], int(sys.argv[3])), allow_reuse_address=True)
    task = asyncio.create_task(server.serve_forever())
    await server.serving
    print("ready", flush=True)
    await task


asyncio.run(main())
