-- Testbench of the handshake: reset low, then one clock period per reaction. The inputs
-- are set before the rising edge, the outputs read after the falling edge.
library ieee;
use ieee.std_logic_1164.all;
use std.textio.all;

entity tb_handshake is
end tb_handshake;

architecture bench of tb_handshake is
  signal REQ, ACK, ABORT, BUSY, DONE : std_logic := '0';
  signal reset, clk : std_logic := '0';

  -- One reaction's inputs: REQ, ACK, ABORT.
  type inputs is array (1 to 3) of std_logic;
  type script is array (positive range <>) of inputs;
  constant reactions : script := (
    "000", "100", "000", "000", "010",   -- a request, acknowledged two reactions later
    "000", "100", "000", "001",          -- a request, aborted
    "100", "110", "000"                  -- a request acknowledged at once
  );

  procedure show(l : inout line; name : string; s : std_logic) is
  begin
    if s = '1' then
      write(l, " " & name);
    end if;
  end procedure;
begin
  dut : entity work.handshake
    port map (REQ => REQ, ACK => ACK, ABORT => ABORT, reset => reset, clk => clk,
              BUSY => BUSY, DONE => DONE);

  process
    variable l : line;
  begin
    reset <= '0';
    wait for 5 ns;
    reset <= '1';
    wait for 5 ns;
    for i in reactions'range loop
      REQ <= reactions(i)(1);
      ACK <= reactions(i)(2);
      ABORT <= reactions(i)(3);
      wait for 5 ns;
      clk <= '1';
      wait for 5 ns;
      clk <= '0';
      wait for 5 ns;
      write(l, string'("reaction "));
      write(l, i, right, 2);
      write(l, string'(":"));
      show(l, "REQ", REQ);
      show(l, "ACK", ACK);
      show(l, "ABORT", ABORT);
      write(l, string'("  ->"));
      show(l, "BUSY", BUSY);
      show(l, "DONE", DONE);
      writeline(output, l);
    end loop;
    wait;
  end process;
end bench;
