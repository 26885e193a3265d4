// Replays reactions through a generated component: one line of stdin is the event string
// of an instant; prints "N / OUT OUT=value" with the outputs that the step fired present.
using System;
using System.Collections.Generic;
using System.Reflection;

public static class TraceDriver {
  public static int Main() {
    Type component = null;
    foreach (Type t in Assembly.GetExecutingAssembly().GetTypes())
      if (t.Namespace == "GenEntree" && t.GetEvent("SendEventList") != null) component = t;
    if (component == null) { Console.Error.WriteLine("driver: no component class"); return 1; }
    object bean = Activator.CreateInstance(component);
    MethodInfo step = null;
    foreach (MethodInfo m in component.GetMethods())
      if (m.Name.EndsWith("_automaton")) step = m;
    string fired = "";
    EventInfo send = component.GetEvent("SendEventList");
    Action<string> keep = s => fired = s;
    send.AddEventHandler(bean, Delegate.CreateDelegate(send.EventHandlerType, keep.Target, keep.Method));
    string line;
    int n = 0;
    while ((line = Console.ReadLine()) != null) {
      n++;
      fired = "";
      step.Invoke(bean, new object[] {line});
      var words = new List<string>();
      foreach (string w in fired.Split(new char[] {';'}, StringSplitOptions.RemoveEmptyEntries)) {
        string[] f = w.Split(new char[] {':'}, 3);
        if (f[1] != "True") continue;
        words.Add(f[2] == "" ? f[0] : f[0] + "=" + f[2]);
      }
      Console.WriteLine(n + " /" + (words.Count > 0 ? " " + string.Join(" ", words) : ""));
    }
    return 0;
  }
}
