# A Modbus RTU slave on pymodbus whose memory is reached through the reserved registers.
# Usage: pymodbus_slave.py DEVICE SLAVE. Prints "ready" when the port is open.
import asyncio
import sys

from pymodbus.framer.rtu_framer import ModbusRtuFramer
from pymodbus.interfaces import IModbusSlaveContext
from pymodbus.datastore import ModbusServerContext
from pymodbus.server.async_io import ModbusSerialServer

EVEN, ODD, DATA = 0xFFFD, 0xFFFB, 0xFF00
TABLES = {1: "coils", 2: "inputs", 3: "holding", 4: "input", 6: "holding", 16: "holding",
          23: "holding"}


class Slave(IModbusSlaveContext):
    def __init__(self):
        self.memory = bytearray((a * 7 + (a >> 8)) & 0xFF for a in range(0x10000))
        self.tables = {
            "coils": [n % 3 == 0 for n in range(0x2000)],
            "inputs": [n % 5 == 0 for n in range(0x2000)],
            "holding": [(n * 3) & 0xFFFF for n in range(0x1000)],
            "input": [(n * 5) & 0xFFFF for n in range(0x1000)],
        }
        self.place, self.tunnel = 0, None

    def validate(self, fc_as_hex, address, count=1):
        if fc_as_hex in (16, 23) and address in (EVEN, ODD):
            return True
        if fc_as_hex == 23 and address == DATA:
            return True
        return address + count <= len(self.tables[TABLES[fc_as_hex]])

    def setValues(self, fc_as_hex, address, values):
        if address not in (EVEN, ODD):
            self.tables[TABLES[fc_as_hex]][address:address + len(values)] = values
            return
        self.place, self.tunnel = values[0] << 16 | values[1], address
        data = bytearray()
        for register in values[2:]:
            data += bytes((register & 0xFF, register >> 8))
        if address == ODD and data:
            data.pop()
        self.memory[self.place:self.place + len(data)] = data

    def getValues(self, fc_as_hex, address, count=1):
        if fc_as_hex != 23 or address != DATA:
            return self.tables[TABLES[fc_as_hex]][address:address + count]
        data = self.memory[self.place:self.place + 2 * count - (self.tunnel == ODD)] + b"\0"
        return [data[2 * i] | data[2 * i + 1] << 8 for i in range(count)]


async def main(device, slave):
    context = ModbusServerContext(slaves={slave: Slave()}, single=False)
    server = ModbusSerialServer(context, framer=ModbusRtuFramer, port=device, baudrate=115200,
                                ignore_missing_slaves=True)
    await server.start()
    print("ready" if server.transport else "no port", flush=True)
    await server.serve_forever()


asyncio.run(main(sys.argv[1], int(sys.argv[2])))
