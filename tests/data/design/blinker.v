// A small design with what netlists have: hierarchy used twice, buses of all directions, an inout port,
// constants, an unconnected port, escaped names, parameters and attributes.
module stage #(parameter WIDTH = 4, parameter MODE = "fast") (
    input clk,
    input rst,
    input [WIDTH-1:0] d,
    output reg [WIDTH-1:0] q,
    output carry
);
    (* keep *) wire [WIDTH:0] sum = d + 1'b1;
    assign carry = sum[WIDTH];
    always @(posedge clk)
        if (rst) q <= 0;
        else q <= sum[WIDTH-1:0];
endmodule

(* blackbox *)
module IOBUF (input I, input T, output O, inout IO);
endmodule

module empty;
endmodule

(* top *)
module blinker (
    input clk,
    input rst,
    input [7:4] start,
    input [0:3] reversed,
    inout pad,
    output [3:0] led,
    output [1:0] fixed
);
    wire [3:0] first;
    wire carry_first;
    wire \odd/name.with[2] ;
    stage #(.WIDTH(4)) u_first (.clk(clk), .rst(rst), .d(start), .q(first), .carry(carry_first));
    stage #(.WIDTH(4)) u_second (.clk(clk), .rst(1'b0), .d(first ^ reversed), .q(led), .carry());
    (* keep *) empty u_empty ();
    IOBUF \io/buf[0] (.I(carry_first), .T(1'b1), .O(\odd/name.with[2] ), .IO(pad));
    assign fixed = {\odd/name.with[2] , 1'b1};
endmodule
