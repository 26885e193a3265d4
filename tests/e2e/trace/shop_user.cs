// The other half of the C# class shop: the type money, its zero and the methods.
namespace GenEntree {
  public struct money {
    public long cents;
    public static money To(string text) { money m; m.cents = long.Parse(text); return m; }
    public override string ToString() { return cents.ToString(); }
  }

  public partial class shop {
    private money zero_money = new money();
    private money add_cents(money m, int c) { money r; r.cents = m.cents + c; return r; }
    private int cents(money m) { return (int)m.cents; }
  }
}
