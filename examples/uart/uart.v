// A serial port with a byte-wide bus side: 115200 baud at a clock of 100 MHz, 8 data bits, no parity, one stop
// bit. Bytes written are sent in order through a FIFO; bytes received wait in another one until they are read.

module uart (
    input wire clk,
    input wire rst,

    input  wire       wr_en,
    input  wire [7:0] wr_data,
    output wire       wr_full,
    input  wire       rd_en,
    output wire [7:0] rd_data,
    output wire       rd_empty,

    input  wire rxd,
    output wire txd,
    output reg  overrun,      // a byte arrived while the receive FIFO was full; stays until reset
    output reg  frame_error,  // a byte came without its stop bit; stays until reset
    output wire irq           // something to read, or something went wrong
);
    wire [7:0] tx_data, rx_data;
    wire tx_empty, tx_ready, rx_full, rx_valid, rx_bad_stop;
    wire tx_start = tx_ready && !tx_empty;

    fifo tx_fifo (
        .clk(clk), .rst(rst),
        .wr_en(wr_en), .wr_data(wr_data), .full(wr_full),
        .rd_en(tx_start), .rd_data(tx_data), .empty(tx_empty)
    );

    uart_tx tx (
        .clk(clk), .rst(rst), .start(tx_start), .data(tx_data), .ready(tx_ready), .txd(txd)
    );

    uart_rx rx (
        .clk(clk), .rst(rst), .rxd(rxd), .data(rx_data), .valid(rx_valid), .bad_stop(rx_bad_stop)
    );

    fifo rx_fifo (
        .clk(clk), .rst(rst),
        .wr_en(rx_valid), .wr_data(rx_data), .full(rx_full),
        .rd_en(rd_en), .rd_data(rd_data), .empty(rd_empty)
    );

    always @(posedge clk)
        if (rst) begin
            overrun <= 1'b0;
            frame_error <= 1'b0;
        end else begin
            if (rx_valid && rx_full) overrun <= 1'b1;
            if (rx_bad_stop) frame_error <= 1'b1;
        end

    assign irq = !rd_empty || overrun || frame_error;
endmodule

// First in, first out. The oldest word is on rd_data whenever the FIFO is not empty; rd_en takes it away.
// Writes to a full FIFO and reads of an empty one do nothing.
module fifo #(
    parameter WIDTH = 8,
    parameter DEPTH_LOG2 = 4  // holds 2 ** DEPTH_LOG2 words
) (
    input  wire             clk,
    input  wire             rst,
    input  wire             wr_en,
    input  wire [WIDTH-1:0] wr_data,
    output wire             full,
    input  wire             rd_en,
    output wire [WIDTH-1:0] rd_data,
    output wire             empty
);
    reg [WIDTH-1:0] words [0:(1 << DEPTH_LOG2) - 1];
    // One bit more than the address needs tells a full FIFO from an empty one.
    reg [DEPTH_LOG2:0] wr_at, rd_at;

    assign empty = wr_at == rd_at;
    assign full = wr_at == {~rd_at[DEPTH_LOG2], rd_at[DEPTH_LOG2-1:0]};
    assign rd_data = words[rd_at[DEPTH_LOG2-1:0]];

    always @(posedge clk) begin
        if (wr_en && !full) words[wr_at[DEPTH_LOG2-1:0]] <= wr_data;
        if (rst) begin
            wr_at <= 0;
            rd_at <= 0;
        end else begin
            if (wr_en && !full) wr_at <= wr_at + 1'b1;
            if (rd_en && !empty) rd_at <= rd_at + 1'b1;
        end
    end
endmodule

// Sends a byte: start bit, eight data bits from the lowest, stop bit.
module uart_tx (
    input  wire       clk,
    input  wire       rst,
    input  wire       start,  // taken only while ready
    input  wire [7:0] data,
    output wire       ready,
    output wire       txd
);
    reg [8:0] shift;      // what is still to be sent, the bit on the line at the right
    reg [3:0] bits_left;
    wire tick;

    assign ready = bits_left == 0;
    assign txd = shift[0];

    bit_timer timer (
        .clk(clk), .restart(ready), .half(1'b0), .tick(tick)
    );

    always @(posedge clk)
        if (rst) begin
            shift <= 9'h1ff;
            bits_left <= 0;
        end else if (ready) begin
            if (start) begin
                shift <= {data, 1'b0};
                bits_left <= 10;
            end
        end else if (tick) begin
            shift <= {1'b1, shift[8:1]};
            bits_left <= bits_left - 1'b1;
        end
endmodule

// Receives a byte: waits for a start bit, then looks at the line in the middle of each bit.
module uart_rx (
    input  wire       clk,
    input  wire       rst,
    input  wire       rxd,
    output reg  [7:0] data,
    output reg        valid,    // for one clock: data is a whole byte
    output reg        bad_stop  // for one clock: the line was low where the stop bit belongs
);
    reg [1:0] line;       // the line behind two flip-flops, safe from metastability
    reg [3:0] bits_left;  // start bit, data bits and stop bit still to come
    wire idle = bits_left == 0;
    wire tick;

    bit_timer timer (
        .clk(clk), .restart(idle), .half(bits_left == 10), .tick(tick)
    );

    always @(posedge clk) begin
        line <= {line[0], rxd};
        valid <= 1'b0;
        bad_stop <= 1'b0;
        if (rst) begin
            line <= 2'b11;
            bits_left <= 0;
        end else if (idle) begin
            if (!line[1]) bits_left <= 10;
        end else if (tick) begin
            bits_left <= bits_left - 1'b1;
            if (bits_left == 10) begin
                if (line[1]) bits_left <= 0;  // a glitch, no start bit
            end else if (bits_left == 1) begin
                valid <= line[1];
                bad_stop <= !line[1];
            end else
                data <= {line[1], data[7:1]};
        end
    end
endmodule

// Ticks every CLOCKS_PER_BIT clocks; after half of that while half is set.
module bit_timer #(
    parameter CLOCKS_PER_BIT = 868  // clock frequency divided by the baud rate
) (
    input  wire clk,
    input  wire restart,
    input  wire half,
    output wire tick
);
    localparam WIDTH = $clog2(CLOCKS_PER_BIT);
    localparam [WIDTH-1:0] WHOLE = CLOCKS_PER_BIT - 1, HALF = CLOCKS_PER_BIT / 2 - 1;
    reg [WIDTH-1:0] count;

    assign tick = count == (half ? HALF : WHOLE);

    always @(posedge clk)
        if (restart || tick) count <= 0;
        else count <= count + 1'b1;
endmodule
