// The cells that the netlist is made of: lookup tables of one to four inputs and three kinds of flip-flop.

(* blackbox *) module LUT1 #(parameter [1:0] INIT = 0) (input I0, output O); endmodule
(* blackbox *) module LUT2 #(parameter [3:0] INIT = 0) (input I0, I1, output O); endmodule
(* blackbox *) module LUT3 #(parameter [7:0] INIT = 0) (input I0, I1, I2, output O); endmodule
(* blackbox *) module LUT4 #(parameter [15:0] INIT = 0) (input I0, I1, I2, I3, output O); endmodule

(* blackbox *) module DFF (input C, D, output Q); endmodule
// With clock enable.
(* blackbox *) module DFFE (input C, CE, D, output Q); endmodule
// With clock enable and a synchronous reset to 0.
(* blackbox *) module DFFRE (input C, CE, R, D, output Q); endmodule
