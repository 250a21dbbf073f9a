"""A Modbus server on pymodbus: "tcp" on a free port of loopback, or "rtu PATH" on a serial line.

Prints "ready" and the port (0 for a serial line) once it serves. Holding register N holds 1000 + N, input register N
holds 2000 + N, every odd coil and discrete input is on. Ends with its standard input.
"""
import asyncio
import sys

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server.async_io import ModbusSerialServer, ModbusTcpServer
from pymodbus.transaction import ModbusRtuFramer

COUNT = 300


def context():
    bits = [address % 2 == 1 for address in range(COUNT)]
    slave = ModbusSlaveContext(
        di=ModbusSequentialDataBlock(0, list(bits)),
        co=ModbusSequentialDataBlock(0, list(bits)),
        hr=ModbusSequentialDataBlock(0, [1000 + address for address in range(COUNT)]),
        ir=ModbusSequentialDataBlock(0, [2000 + address for address in range(COUNT)]),
        zero_mode=True,
    )
    return ModbusServerContext(slaves={1: slave}, single=False)


async def main():
    if sys.argv[1] == "tcp":
        server = ModbusTcpServer(context(), address=("127.0.0.1", 0))
        task = asyncio.create_task(server.serve_forever())
        await server.serving
        port = server.server.sockets[0].getsockname()[1]
    else:
        server = ModbusSerialServer(context(), framer=ModbusRtuFramer, port=sys.argv[2], baudrate=19200,
                                    ignore_missing_slaves=True)
        await server.start()
        task = asyncio.create_task(server.serve_forever())
        port = 0
    print("ready", port, flush=True)
    await asyncio.get_running_loop().run_in_executor(None, sys.stdin.read)
    task.cancel()


asyncio.run(main())
