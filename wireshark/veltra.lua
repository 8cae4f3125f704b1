-- SPDX-FileCopyrightText: 2026 The libveltrasdk authors
-- SPDX-License-Identifier: MIT

-- Wireshark's dissector of what travels between the library and the adapter: packets, messages,
-- requests with their responses, notifications. Filters begin with "veltra.".

local veltra = Proto("veltra", "Veltra adapter")

veltra.prefs.guess = Pref.bool("Recognise adapters by their reports", true,
    "Also where the capture does not hold the device's descriptor")
veltra.prefs.vendor = Pref.uint("USB vendor identifier", 0x1209, "Of both models")
veltra.prefs.product = Pref.uint("USB product identifier", 0x0001,
    "Of the full-speed model; the high-speed model's is one more")
veltra.prefs.outstanding = Pref.uint("Requests outstanding", 1,
    "How many requests the program lets be outstanding; a response that more have overtaken is late")

-- One row a command: its name, what the request carries behind byte 4, what the response carries
-- behind the status. An item is a name and its number of bytes; without a number it is what is left.
-- "#": the field counts the bytes that follow it. "?": it may be absent. "[]": bits of one byte.
-- "not used" bytes have no field.
local i2c_parameters = "bus index 1, clock in Hz 4, option 1"
local spi_parameters =
    "bit order 1, mode 1, data width 1, chip select 1, polarity 1, clock in Hz 4"
local uart_parameters = "baud rate 1, handshake 1, parity 1, data size 1, stop bits 1"
local i3c_parameters = "push-pull rate 1, open-drain rate 1, I2C rate 1, drive strength 1"
local commands = {
    [0x0402] = { "EnterBootMode" },
    [0x0404] = { "I3cSetBusVoltage", "mV 2" },
    [0x0405] = { "SetI2cSpiUartGpioVoltage", "mV 2, flag 1" },
    [0x0407] = { "GetUsbString", "index 1", "length 1, string" },

    [0x0802] = { "I2cSetPullUpResistors", "bus index 1, setting 1" },
    [0x0901] = { "I2cControllerInit", i2c_parameters },
    [0x0902] = { "I2cSetParameters", i2c_parameters },
    [0x0904] = { "I2cWrite", "bus index 1, #data length 2, target address 1, "
        .. "register-address length 1, register address 4, flag 1, data" },
    [0x0905] = { "I2cRead", "bus index 1, length to read 2, target address 1, "
        .. "register-address length 1, register address 4, flag 1", "not used 3, data" },
    [0x0906] = { "I2cScanBus", "bus index 1, flag 1", "not used 1, number of 7-bit addresses 1, "
        .. "number of 10-bit addresses 1, list" },

    [0x0D01] = { "SpiControllerInit", spi_parameters },
    [0x0D02] = { "SpiSetParameters", spi_parameters },
    [0x0D04] = { "SpiTransfer", "#number of bytes to send 2, requested length 2, bytes",
        "#number of bytes received 2, bytes" },

    [0x1002] = { "UartInit", uart_parameters },
    [0x1003] = { "UartSetParameters", uart_parameters },
    [0x1005] = { "UartSendMessage", "#number of bytes 2, bytes" },

    [0x1401] = { "GpioConfigurePin", "pin 1, functionality 1, ?level 1" },
    [0x1402] = { "GpioDigitalWrite", "pin 1, level 1" },
    [0x1403] = { "GpioDigitalRead", "pin 1", "level 1" },
    [0x1404] = { "GpioConfigureInterrupt", "pin 1, trigger 1" },
    [0x1405] = { "GpioDisableInterrupt", "pin 1" },

    [0x1901] = { "I3cControllerInit", i3c_parameters },
    [0x1902] = { "I3cSetParameters", i3c_parameters },
    [0x1904] = { "I3cInitBus", "number of records 1, records 16" },
    [0x1905] = { "I3cResetBus" },
    [0x1906] = { "I3cGetDeviceTable", "", "number of records 1, records 16" },
    [0x1907] = { "I3cSetTargetDeviceConfiguration", "address 1, configuration 1" },
    [0x1908] = { "I3cPrivateTransfer", "target address 1, [direction 0-0 mode 1-2 flags 3-7], "
        .. "HDR command code 1, sub-address length 1, sub-address 4, number of bytes 2, ?data",
        "not used 2, #number of bytes 2, data" },
    [0x1909] = { "I3cCccTransfer", "target address 1, "
        .. "[direction 0-0 mode 1-2 option 3-3 type 4-7], length 1, code 1, defining byte 1, ?data",
        "not used 3, #number of bytes 1, data" },
    [0x190A] = { "I3cBusPattern", "pattern 1" },
}
local notifications = {
    [0x1081] = { "UartRxNotification", "#number of bytes 2, bytes" },
    [0x1481] = { "GpioNotification", "event byte 1" },
    [0x1981] = { "I3cIbiNotification", "address 1, #payload length 1, payload" },
    [0x1982] = { "I3cHotJoinNotification", "PID 6, BCR 1, DCR 1, dynamic address 1" },
}
local record = "static address 1, dynamic address 1, PID 6, BCR 1, DCR 1, maximum write length 2, "
    .. "maximum read length 2, maximum IBI payload 1, configuration 1"
local record_size = 16

-- A command code's high byte is its group.
local groups = {
    [0x04] = "system", [0x08] = "i2c", [0x09] = "i2c", [0x0D] = "spi", [0x10] = "uart",
    [0x14] = "gpio", [0x19] = "i3c",
}

local statuses = {
    [0x0000] = "Success",
    [0x0001] = "UnknownCommand",
    [0x0002] = "MalformedRequest",
    [0x0003] = "InvalidParameter",
    [0x0004] = "NoVoltage",
    [0x0005] = "NotInitialised",
    [0x0006] = "NotAcknowledged",
    [0x0007] = "DataNotAcknowledged",
    [0x0008] = "NoPullUp",
    [0x0009] = "BusStuck",
    [0x0030] = "AddressReserved",
    [0x0031] = "AddressInUse",
    [0x0032] = "LengthAboveLimit",
}

-- What the values of a field are called. Numbers that are their own names are left out.
local values = {
    ["veltra.spi.bit_order"] = { [0] = "MSB first", [1] = "LSB first" },
    ["veltra.spi.data_width"] = { [8] = "8 bits", [16] = "16 bits" },
    ["veltra.spi.polarity"] = { [0] = "active low", [1] = "active high" },
    ["veltra.uart.baud_rate"] = {
        [0] = "1200", [1] = "2400", [2] = "4800", [3] = "9600", [4] = "19200", [5] = "38400",
        [6] = "57600", [7] = "115200", [8] = "230400", [9] = "460800", [10] = "921600",
    },
    ["veltra.uart.handshake"] = { [0] = "none", [1] = "RTS/CTS" },
    ["veltra.uart.parity"] = { [0] = "none", [1] = "odd", [2] = "even" },
    ["veltra.uart.data_size"] = { [5] = "5 bits", [6] = "6 bits", [7] = "7 bits", [8] = "8 bits" },
    ["veltra.gpio.functionality"] = {
        [0] = "input", [1] = "output", [2] = "input pull-up", [3] = "input pull-down",
        [4] = "open-drain output",
    },
    ["veltra.gpio.level"] = { [0] = "low", [1] = "high" },
    ["veltra.gpio.trigger"] = {
        [0] = "rising edge", [1] = "falling edge", [2] = "both edges", [3] = "low level",
        [4] = "high level",
    },
    ["veltra.i3c.push_pull_rate"] = {
        [0] = "12.5 MHz", [1] = "10 MHz", [2] = "8 MHz", [3] = "6 MHz", [4] = "4 MHz",
        [5] = "2 MHz", [6] = "1 MHz",
    },
    ["veltra.i3c.open_drain_rate"] = {
        [0] = "4 MHz", [1] = "2.5 MHz", [2] = "1 MHz", [3] = "0.4 MHz",
    },
    ["veltra.i3c.i2c_rate"] = { [0] = "1 MHz", [1] = "0.4 MHz", [2] = "0.1 MHz" },
    ["veltra.i3c.drive_strength"] = { [0] = "2 mA", [1] = "4 mA", [2] = "8 mA", [3] = "12 mA" },
    ["veltra.i3c.configuration"] = { [0] = "accept IBI", [1] = "reject IBI", [2] = "legacy I2C" },
    ["veltra.i3c.direction"] = { [0] = "write", [1] = "read" },
    ["veltra.i3c.mode"] = { [0] = "SDR", [1] = "HDR-DDR", [2] = "legacy I2C" },
    ["veltra.i3c.flags"] = {
        [0] = "none", [1] = "skip broadcast address", [2] = "no STOP",
        [3] = "skip broadcast address, no STOP",
    },
    ["veltra.i3c.type"] = { [0] = "without defining byte", [1] = "with defining byte" },
    ["veltra.i3c.pattern"] = { [0] = "target reset", [1] = "HDR exit" },
    ["veltra.i3c.code"] = {
        [0x00] = "ENEC broadcast", [0x01] = "DISEC broadcast", [0x06] = "RSTDAA",
        [0x07] = "ENTDAA", [0x09] = "SETMWL broadcast", [0x0A] = "SETMRL broadcast",
        [0x29] = "SETAASA", [0x2A] = "RSTACT broadcast", [0x80] = "ENEC direct",
        [0x81] = "DISEC direct", [0x87] = "SETDASA", [0x88] = "SETNEWDA",
        [0x89] = "SETMWL direct", [0x8A] = "SETMRL direct", [0x8B] = "GETMWL", [0x8C] = "GETMRL",
        [0x8D] = "GETPID", [0x8E] = "GETBCR", [0x8F] = "GETDCR", [0x90] = "GETSTATUS",
        [0x95] = "GETCAPS", [0x9A] = "RSTACT direct",
    },
    -- What RSTACT's defining byte is called; that of other codes is a number.
    ["veltra.i3c.reset_action"] = {
        [0x00] = "no reset", [0x01] = "reset peripheral", [0x02] = "reset whole target",
        [0x03] = "reset debug network adapter", [0x04] = "virtual target detect",
        [0x81] = "time to reset peripheral", [0x82] = "time to reset whole target",
        [0x83] = "time to reset debug network adapter", [0x84] = "virtual target indication",
    },
}
local reset_action_codes = { [0x2A] = true, [0x9A] = true }

-- Fields

local names = {}
for _, rows in ipairs({ commands, notifications }) do
    for code, row in pairs(rows) do
        names[code] = row[1]
    end
end

local f = {
    packet_first = ProtoField.bool("veltra.packet.first", "First packet", 16, nil, 0x0001),
    packet_last = ProtoField.bool("veltra.packet.last", "Last packet", 16, nil, 0x0002),
    packet_length = ProtoField.uint16("veltra.packet.length", "Payload length", base.DEC, nil, 0x0FFC),
    message_in = ProtoField.framenum("veltra.message_in", "Message complete in"),
    transaction = ProtoField.uint16("veltra.transaction", "Transaction identifier", base.DEC),
    command = ProtoField.uint16("veltra.command", "Command", base.HEX, names),
    status = ProtoField.uint16("veltra.status", "Status", base.HEX, statuses),
    surplus = ProtoField.bytes("veltra.surplus", "Bytes beyond the layout"),
    request = ProtoField.framenum("veltra.request_in", "Request in", base.NONE, frametype.REQUEST),
    response = ProtoField.framenum("veltra.response_in", "Response in", base.NONE,
        frametype.RESPONSE),
    time = ProtoField.relative_time("veltra.time", "Time since the request"),
    record = ProtoField.none("veltra.i3c.record", "Record"),
    reset_action = ProtoField.uint8("veltra.i3c.reset_action", "reset action", base.HEX,
        values["veltra.i3c.reset_action"]),
}

local e = {
    late = ProtoExpert.new("veltra.late", "The response is late: other requests were sent before it",
        expert.group.SEQUENCE, expert.severity.WARN),
    unmatched = ProtoExpert.new("veltra.unmatched", "The response answers no request of this capture",
        expert.group.SEQUENCE, expert.severity.WARN),
    unanswered = ProtoExpert.new("veltra.unanswered", "The request has no response in this capture",
        expert.group.SEQUENCE, expert.severity.NOTE),
    refused = ProtoExpert.new("veltra.refused", "The adapter refused the request",
        expert.group.RESPONSE_CODE, expert.severity.NOTE),
    truncated = ProtoExpert.new("veltra.truncated", "The frame is shorter than its layout",
        expert.group.MALFORMED, expert.severity.ERROR),
    fewer = ProtoExpert.new("veltra.fewer", "Fewer bytes than the frame announces",
        expert.group.MALFORMED, expert.severity.ERROR),
    unknown = ProtoExpert.new("veltra.unknown", "No command or notification has this code",
        expert.group.PROTOCOL, expert.severity.WARN),
    broken = ProtoExpert.new("veltra.broken", "A packet continues a message that has no beginning",
        expert.group.REASSEMBLE, expert.severity.WARN),
    long = ProtoExpert.new("veltra.long", "The message is longer than the library lets it grow",
        expert.group.REASSEMBLE, expert.severity.WARN),
    cut = ProtoExpert.new("veltra.cut", "The packet is longer than what was captured of its report",
        expert.group.MALFORMED, expert.severity.ERROR),
}

local decimal = { "^number", "length", "^maximum", "Hz", "^mV$", "index", "^pin$", "^chip select$",
    "size$", "bits$", "rate$", "width$", "^mode$" }
local is_text = { ["string"] = true }
local is_bytes = { ["sub-address"] = true, ["PID"] = true }

local function display_of(name)
    for _, pattern in ipairs(decimal) do
        if name:find(pattern) then
            return base.DEC
        end
    end
    return base.HEX
end

local integers = { ProtoField.uint8, ProtoField.uint16, nil, ProtoField.uint32 }

-- The items of a layout, read once.
local function items_of(layout)
    local items = {}
    for text in (layout or ""):gmatch("[^,]+") do
        local marks, rest = text:match("^%s*([#?]*)(.*)$")
        local name, width = rest:match("^(.-) (%d+)$")
        local item = {
            name = name or rest, width = tonumber(width),
            counts = marks:find("#", 1, true), optional = marks:find("?", 1, true),
        }
        if rest:sub(1, 1) == "[" then
            item.width = 1
            item.bits = {}
            for bits, first, last in rest:gmatch("([%w-]+) (%d)-(%d)") do
                local mask = 2 ^ (last + 1) - 2 ^ first
                table.insert(item.bits, { name = bits, width = 1, mask = mask })
            end
        end
        table.insert(items, item)
    end
    return items
end

-- A name may have fields of two widths in one group: the wider one's type serves both.
local widest = {}
local with_fields = {}

local function list_fields(group, items)
    for _, item in ipairs(items) do
        if item.bits then
            list_fields(group, item.bits)
        elseif item.name ~= "not used" and item.name ~= "records" then
            item.abbreviation = "veltra." .. group .. "." .. item.name:lower():gsub("[^%w]", "_")
            widest[item.abbreviation] = math.max(widest[item.abbreviation] or 0, item.width or 0)
            table.insert(with_fields, item)
        end
    end
end

local record_items = items_of(record)
list_fields("i3c", record_items)
for _, rows in ipairs({ commands, notifications }) do
    for code, row in pairs(rows) do
        row.group = groups[math.floor(code / 256)]
        row.request, row.response = items_of(row[2]), items_of(row[3])
        list_fields(row.group, row.request)
        list_fields(row.group, row.response)
    end
end

for _, item in ipairs(with_fields) do
    local abbreviation = item.abbreviation
    local make = not is_bytes[item.name] and integers[widest[abbreviation]]
    if not f[abbreviation] then
        if is_text[item.name] then
            f[abbreviation] = ProtoField.string(abbreviation, item.name, base.UNICODE)
        elseif make then
            f[abbreviation] = make(abbreviation, item.name, display_of(item.name),
                values[abbreviation], item.mask)
        else
            f[abbreviation] = ProtoField.bytes(abbreviation, item.name)
        end
    end
    item.field = f[abbreviation]
    item.is_number = make and true
end

local all_fields = {}
for _, field in pairs(f) do
    table.insert(all_fields, field)
end
veltra.fields = all_fields
veltra.experts = { e.late, e.unmatched, e.unanswered, e.refused, e.truncated, e.fewer, e.unknown,
    e.broken, e.long, e.cut }

-- What the packets before have said. Filled in the first pass; what a frame needs to be shown again
-- is kept by its number.

local max_message = 2 ^ 20
local frames, messages_begun, requests, requests_sent, recognised

local function forget()
    frames, messages_begun, requests, requests_sent, recognised = {}, {}, {}, {}, {}
end

-- Whether the report comes from the device, and which device that is.
local function way_of(pinfo)
    local source, target = tostring(pinfo.src), tostring(pinfo.dst)
    local is_in = target == "host"
    local device, endpoint = (is_in and source or target):match("^(.*)%.(%d+)$")
    return is_in, device, endpoint
end

local function match_response(found, id, code, device)
    for place, request in ipairs(requests[device] or {}) do
        if request.id == id and request.code == code then
            table.remove(requests[device], place)
            request.response = found.number
            found.request = request
            found.overtaken = requests_sent[device] - request.place
            return
        end
    end
end

local function u16(bytes, place)
    return bytes:get_index(place) + 256 * bytes:get_index(place + 1)
end

local function understand(found, device, is_in)
    local bytes = found.message
    if bytes:len() < 4 then
        return
    end
    local id, code = u16(bytes, 0), u16(bytes, 2)
    if is_in and id ~= 0 then
        match_response(found, id, code, device)
    elseif not is_in then
        requests_sent[device] = (requests_sent[device] or 0) + 1
        requests[device] = requests[device] or {}
        found.sent = { id = id, code = code, number = found.number, time = found.time,
            place = requests_sent[device] }
        -- The direction bit of the two I3C transfers.
        if (code == 0x1908 or code == 0x1909) and bytes:len() > 5 then
            found.sent.is_write = bytes:get_index(5) % 2 == 0
        end
        table.insert(requests[device], found.sent)
    end
end

-- The packet of a report joins the message that its direction of the device has begun.
local function join(tvb, pinfo, device, is_in)
    local found = { number = pinfo.number, time = pinfo.rel_ts }
    frames[pinfo.number] = found
    if tvb:len() < 2 then
        return
    end
    local header = tvb(0, 2):le_uint()
    local is_first, is_last = bit.band(header, 1) ~= 0, bit.band(header, 2) ~= 0
    local size = math.min(bit.rshift(bit.band(header, 0x0FFC), 2), tvb:len() - 2)
    local key = device .. (is_in and " in" or " out")
    local begun = messages_begun[key]
    if is_first or not begun then
        found.is_broken = not is_first
        begun = { bytes = ByteArray.new(), frames = {} }
        messages_begun[key] = begun
    end
    if begun.bytes:len() + size > max_message then
        found.is_long = true
    elseif size > 0 then
        begun.bytes:append(tvb(2, size):bytes())
    end
    table.insert(begun.frames, found)
    if is_last then
        messages_begun[key] = nil
        found.message = begun.bytes
        found.packets = #begun.frames
        for _, part in ipairs(begun.frames) do
            part.complete_in = pinfo.number
        end
        understand(found, device, is_in)
    end
end

-- Showing

-- Adds the items of a layout. Returns what is wrong with it: an expert information, or nothing.
local function add_items(tree, tvb, place, last, items, is_required)
    local announced, ccc
    if place == last and not is_required then
        return
    end
    for _, item in ipairs(items) do
        local left = last - place
        if item.name == "records" then
            while last - place >= record_size do
                local shown = tree:add(f.record, tvb(place, record_size))
                add_items(shown, tvb, place, place + record_size, record_items, true)
                place = place + record_size
            end
            if place < last then
                return e.truncated
            end
        elseif item.width and left < item.width then
            return not (item.optional and left == 0) and e.truncated or nil
        elseif item.width then
            local range = tvb(place, item.width)
            place = place + item.width
            for _, bits in ipairs(item.bits or {}) do
                tree:add_le(bits.field, range)
            end
            if item.is_number then
                tree:add_le(item.field, range)
                announced = item.counts and range:le_uint() or announced
                ccc = item.name == "code" and range:uint() or ccc
            elseif item.field then
                tree:add(item.field, range)
            end
            if item.name == "defining byte" and reset_action_codes[ccc] then
                tree:add(f.reset_action, range):set_generated()
            end
        else
            local size = math.min(announced or left, left)
            if size > 0 then
                tree:add(item.field, tvb(place, size))
                place = place + size
            end
            if announced and announced > left then
                return e.fewer
            end
        end
    end
    if place < last then
        tree:add(f.surplus, tvb(place, last - place))
    end
end

local function show_seconds(seconds)
    local whole = math.floor(seconds)
    return NSTime.new(whole, math.floor((seconds - whole) * 1e9 + 0.5))
end

local function show_request(tree, tvb, place, last, found, row, pinfo)
    local name = row and row[1] or "unknown command"
    pinfo.cols.info:set(string.format("%s request, identifier %d", name, found.sent.id))
    if found.sent.response then
        tree:add(f.response, found.sent.response):set_generated()
    elseif pinfo.visited and name ~= "EnterBootMode" then
        tree:add_proto_expert_info(e.unanswered)
    end
    local ccc = found.sent.code == 0x1909 and last - place > 7 and tvb(place + 7, 1):uint()
    if ccc then
        pinfo.cols.info:append(", " .. (values["veltra.i3c.code"][ccc] or string.format("0x%02x", ccc)))
    end
    return row and add_items(tree, tvb, place + 4, last, row.request, true)
end

local function show_response(tree, tvb, place, last, found, row, pinfo)
    local id = tvb(place, 2):le_uint()
    local status = last - place >= 6 and tvb(place + 4, 2):le_uint()
    local name = row and row[1] or "unknown command"
    pinfo.cols.info:set(string.format("%s response, identifier %d", name, id))
    local request = found.request
    if not request then
        tree:add_proto_expert_info(e.unmatched)
    else
        tree:add(f.request, request.number):set_generated()
        tree:add(f.time, show_seconds(found.time - request.time)):set_generated()
        if found.overtaken >= veltra.prefs.outstanding then
            tree:add_proto_expert_info(e.late)
            pinfo.cols.info:append(", late")
        end
    end
    if not status then
        return e.truncated
    end
    local shown = tree:add_le(f.status, tvb(place + 4, 2))
    if status ~= 0 then
        shown:add_proto_expert_info(e.refused)
        pinfo.cols.info:append(", " .. (statuses[status] or string.format("status 0x%04x", status)))
    end
    local is_required = status == 0 and not (request and request.is_write)
    return row and add_items(tree, tvb, place + 6, last, row.response, is_required)
end

local function show_notification(tree, tvb, place, last, row, pinfo)
    pinfo.cols.info:set(row and row[1] or "unknown notification")
    if last - place < 6 then
        return e.truncated
    end
    return row and add_items(tree, tvb, place + 6, last, row.request, true)
end

local function show_message(tree, tvb, place, last, found, is_in, pinfo)
    if last - place < 4 then
        pinfo.cols.info:set("truncated frame")
        tree:add_proto_expert_info(e.truncated)
        return
    end
    local id, code = tvb(place, 2):le_uint(), tvb(place + 2, 2):le_uint()
    tree:add_le(f.transaction, tvb(place, 2))
    local shown = tree:add_le(f.command, tvb(place + 2, 2))
    local is_notification = is_in and id == 0
    local row = (is_notification and notifications or commands)[code]
    if not row then
        shown:add_proto_expert_info(e.unknown)
    end
    local complaint
    if is_notification then
        complaint = show_notification(tree, tvb, place, last, row, pinfo)
    elseif is_in then
        complaint = show_response(tree, tvb, place, last, found, row, pinfo)
    else
        complaint = show_request(tree, tvb, place, last, found, row, pinfo)
    end
    if complaint then
        tree:add_proto_expert_info(complaint)
    end
end

local function show(tvb, pinfo, root, is_in)
    local found = frames[pinfo.number]
    local tree = root:add(veltra, tvb())
    pinfo.cols.protocol = "Veltra"
    if tvb:len() < 2 then
        pinfo.cols.info:set("truncated report")
        tree:add_proto_expert_info(e.cut)
        return
    end
    for _, field in ipairs({ f.packet_first, f.packet_last, f.packet_length }) do
        tree:add_le(field, tvb(0, 2))
    end
    local length = bit.rshift(bit.band(tvb(0, 2):le_uint(), 0x0FFC), 2)
    if length > tvb:len() - 2 then
        tree:add_proto_expert_info(e.cut)
    end
    if found.is_broken then
        tree:add_proto_expert_info(e.broken)
    end
    if found.is_long then
        tree:add_proto_expert_info(e.long)
    end
    if not found.message then
        pinfo.cols.info:set("part of a message")
        if found.complete_in then
            tree:add(f.message_in, found.complete_in):set_generated()
        end
    elseif found.packets == 1 then
        show_message(tree, tvb, 2, 2 + found.message:len(), found, is_in, pinfo)
    elseif found.message:len() == 0 then
        pinfo.cols.info:set("truncated frame")
        tree:add_proto_expert_info(e.truncated)
    else
        local joined = found.message:tvb("Message")
        show_message(tree, joined, 0, joined:len(), found, is_in, pinfo)
    end
end

-- Finding the adapters' reports

local function dissect(tvb, pinfo, tree)
    local is_in, device, endpoint = way_of(pinfo)
    if not device or endpoint == "0" or tvb:len() == 0 then
        return false
    end
    if not frames[pinfo.number] then
        if pinfo.visited then
            return false -- it came before the device was recognised
        end
        join(tvb, pinfo, device, is_in)
    end
    show(tvb, pinfo, tree, is_in)
    return true
end

-- The first packet of a message with a known code, in a report of one of the two models.
local function looks_like_adapter(tvb, is_in)
    local size = tvb:len()
    if size ~= 64 and size ~= 1024 then
        return false
    end
    local header, id, code = tvb(0, 2):le_uint(), tvb(2, 2):le_uint(), tvb(4, 2):le_uint()
    local length = bit.rshift(header, 2)
    if header % 2 == 0 or length < 4 or length > size - 2 then
        return false
    end
    if is_in and id == 0 then
        return notifications[code] ~= nil
    end
    return id ~= 0 and commands[code] ~= nil
end

local function guess(tvb, pinfo, tree)
    local is_in, device = way_of(pinfo)
    if not veltra.prefs.guess or not device then
        return false
    end
    if not recognised[device] then
        recognised[device] = looks_like_adapter(tvb, is_in)
    end
    return recognised[device] and dissect(tvb, pinfo, tree)
end

function veltra.dissector(tvb, pinfo, tree)
    return dissect(tvb, pinfo, tree) and tvb:len() or 0
end

local products = DissectorTable.get("usb.product")
local registered = {}

local function register_products()
    for _, product in ipairs(registered) do
        products:remove(product, veltra)
    end
    local first = veltra.prefs.vendor * 65536 + veltra.prefs.product
    registered = { first, first + 1 }
    for _, product in ipairs(registered) do
        products:add(product, veltra)
    end
end

veltra.init = forget
forget()
veltra.prefs_changed = register_products
register_products()
veltra:register_heuristic("usb.interrupt", guess)
